// cartulon-cli as a user runs it: one row per call, on a scratch data folder
// that holds the example disc "Fotos" and an empty disc "Leer". Each row names
// the arguments, the exit code (0 done, 1 nothing found, 2 error), a line the
// output must hold, and for commands that write, what the data folder holds
// afterwards.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "support/scratch.h"

namespace {

using ct::test::CrLf;
using ct::test::ReadAll;
using ct::test::Scratch;

struct Row {
    const char* name;
    std::string args;      // {D} is the data folder, {S} the scratch folder
    int exit;
    const char* output;    // a line of stdout and stderr together ("" no check)
    const char* file;      // a file of the data folder to check afterwards ("" none)
    const char* content;   // its bytes; nullptr: the file must be gone
};

const std::string kFotos = CrLf({"654311424|-1029197328|CDFS|319488|1|2048|Photos 2003", "",
                                 "\\Bilder|R|14.03.2003 09:12:40|", "", "\\Bilder\\p1.jpg|183442|R|14.03.2003 09:12:41|First day",
                                 "\\liesmich.txt|1024|R|14.03.2003 09:12:40|"});

std::string Expand(std::string s, const Scratch& dir) {
    for (std::size_t at; (at = s.find("{D}")) != std::string::npos;) s.replace(at, 3, dir / "Daten");
    for (std::size_t at; (at = s.find("{S}")) != std::string::npos;) s.replace(at, 3, dir.Path());
    return s;
}

class Cli : public testing::TestWithParam<Row> {};

TEST_P(Cli, ExitOutputAndFiles) {
    const Row& row = GetParam();
    Scratch dir;
    dir.Write("Daten/Fotos.idx", kFotos);
    dir.Write("Daten/Leer.idx", CrLf({"0|0||0|0|0|", "", ""}));
    dir.Write("disc/Bilder/a.txt", "hallo\n");
    // A program folder of its own, so the texts are German whatever the build's staged CT.ini says.
    namespace fs = std::filesystem;
    fs::copy_file(CARTULON_CLI, dir / "cartulon-cli");
    fs::copy_file(std::string(CARTULON_STAGE_DIR) + "/CT.rd", dir / "CT.rd");
    dir.Write("CT.ini", CrLf({"0", "C"}) + (dir / "Daten") + "\r\n");
    // The data folder goes right behind the command, so that a row may name another one.
    const std::string args = Expand(row.args, dir), name = args.substr(0, args.find(' '));
    const std::string command = (dir / "cartulon-cli") + " " + name + " --data-folder " + (dir / "Daten") +
                                args.substr(name.size()) + " 2>&1 </dev/null";
    FILE* p = popen(command.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::string out;
    char buf[4096];
    for (std::size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    const int status = pclose(p);
    ASSERT_TRUE(WIFEXITED(status)) << out;
    EXPECT_EQ(WEXITSTATUS(status), row.exit) << out;
    if (*row.output) {
        EXPECT_NE(("\n" + out).find("\n" + std::string(row.output) + "\n"), std::string::npos) << out;
    }
    if (*row.file) {
        const std::string path = dir / ("Daten/" + std::string(row.file));
        if (row.content) {
            EXPECT_EQ(ReadAll(path), Expand(row.content, dir));
        } else {
            EXPECT_FALSE(std::filesystem::exists(path));
        }
    }
}

const std::string kFotosDescribed = CrLf({"654311424|-1029197328|CDFS|319488|1|2048|Photos 2003", "",
                                          "\\Bilder|R|14.03.2003 09:12:40|", "", "\\Bilder\\p1.jpg|183442|R|14.03.2003 09:12:41|neu",
                                          "\\liesmich.txt|1024|R|14.03.2003 09:12:40|"});

INSTANTIATE_TEST_SUITE_P(
    Commands, Cli,
    testing::Values(
        Row{"ListsBothDiscs", "list", 0, "Fotos", "", ""},
        Row{"ListOfNothing", "list --data-folder {S}/disc", 1, "", "", ""},
        Row{"ShowsTheHeader", "show Fotos", 0, "serial number: -1029197328", "", ""},
        Row{"ShowsAFolder", "show Fotos Bilder", 0, "files: 1", "", ""},
        Row{"ShowOfAnUnknownDisc", "show Keine", 2, "", "", ""},
        Row{"SearchFindsAName", "search --name contains p1", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"SearchFindsNothing", "search --name equal zzz", 1, "", "", ""},
        Row{"SearchBySize", "search --size greater 1024", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"StatsCountsDiscs", "stats", 0, "Anzahl der CDs / DVDs: 2", "", ""},
        Row{"DescribesAFile", "describe Fotos Bilder/p1.jpg neu", 0, "", "Fotos.idx", kFotosDescribed.c_str()},
        Row{"DescribeOfAMissingFile", "describe Fotos gibt/es/nicht neu", 1, "", "Fotos.idx", kFotos.c_str()},
        Row{"RenamesADisc", "rename Leer Voll", 0, "", "Leer.idx", nullptr},
        Row{"RenameOntoATakenLabel", "rename Leer Fotos", 2, "", "Leer.idx", "0|0||0|0|0|\r\n\r\n\r\n"},
        Row{"DeleteWithoutYesIsRefused", "delete Leer", 2, "", "Leer.idx", "0|0||0|0|0|\r\n\r\n\r\n"},
        Row{"DeleteWithYes", "delete Leer --yes", 0, "", "Leer.idx", nullptr},
        Row{"AddsAFolder", "add {S}/disc --label Neu --description Urlaub", 0, "folders: 1", "", ""},
        Row{"AddOfATakenLabel", "add {S}/disc --label Fotos", 2, "", "Fotos.idx", kFotos.c_str()},
        Row{"UnknownCommand", "bogus", 2, "", "", ""}),
    [](const testing::TestParamInfo<Row>& info) { return std::string(info.param.name); });

}  // namespace
