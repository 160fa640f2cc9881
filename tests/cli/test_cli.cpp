// cartulon-cli as a user runs it: one row per call, on a scratch data folder
// that holds the example disc "Fotos" and an empty disc "Leer". Each row names
// the arguments, the exit code (0 done, 1 nothing found, 2 error), a line the
// output must hold ("~text": a part of a line, "!line": no such line), for
// commands that write, what the data folder holds afterwards, and where it
// matters the language line of CT.ini and the environment.
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
    const char* ini = "0";  // line 1 of CT.ini: 0 German, 10000 English, -1 none yet
    const char* env = "env -u LC_ALL -u LC_MESSAGES LANG=C.UTF-8";
};

const std::string kFotos = CrLf({"654311424|-1029197328|CDFS|319488|1|2048|Photos 2003", "",
                                 "\\Bilder|R|14.03.2003 09:12:40|", "", "\\Bilder\\p1.jpg|183442|R|14.03.2003 09:12:41|First\tday",
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
    dir.Write("CT.ini", CrLf({row.ini, "C"}) + (dir / "Daten") + "\r\n");
    // The data folder ahead of the command, so that a row's own --data-folder wins.
    const std::string command = std::string(row.env) + " " + (dir / "cartulon-cli") + " --data-folder " +
                                (dir / "Daten") + " " + Expand(row.args, dir) + " 2>&1 </dev/null";
    FILE* p = popen(command.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::string out;
    char buf[4096];
    for (std::size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    const int status = pclose(p);
    ASSERT_TRUE(WIFEXITED(status)) << out;
    EXPECT_EQ(WEXITSTATUS(status), row.exit) << out;
    const std::string want = Expand(row.output, dir);
    if (want[0] == '~') {
        EXPECT_NE(out.find(want.substr(1)), std::string::npos) << out;
    } else if (want[0] == '!') {
        EXPECT_EQ(("\n" + out).find("\n" + want.substr(1) + "\n"), std::string::npos) << out;
    } else if (!want.empty()) {
        EXPECT_NE(("\n" + out).find("\n" + want + "\n"), std::string::npos) << out;
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
        Row{"ListPutsUmlautsBesideTheirLetter", "rename Leer Äpfel >/dev/null && echo $({S}/cartulon-cli --data-folder {D} list)",
            0, "Äpfel Fotos", "", ""},
        Row{"ListOfNothing", "list --data-folder {S}/disc", 1, "", "", ""},
        Row{"ShowsTheHeader", "show Fotos", 0, "Seriennummer: -1029197328", "", ""},
        Row{"ShowsAFolder", "show Fotos Bilder", 0, "Dateien: 1", "", ""},
        Row{"ShowOfAnUnknownDisc", "show Keine", 2, "", "", ""},
        Row{"SearchFindsAName", "search --name contains p1", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"SearchFindsNothing", "search --name equal zzz", 1, "", "", ""},
        Row{"SearchBySize", "search --size greater 1024", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"StatsCountsDiscs", "stats", 0, "Anzahl der CDs / DVDs: 2", "", ""},
        Row{"DescribesAFile", "describe Fotos Bilder/p1.jpg neu", 0, "", "Fotos.idx", kFotosDescribed.c_str()},
        Row{"DescribeOfAMissingFile", "describe Fotos gibt/es/nicht neu", 1, "", "Fotos.idx", kFotos.c_str()},
        Row{"RenamesADisc", "rename Leer Voll", 0, "", "Leer.idx", nullptr},
        Row{"RenameOntoATakenLabel", "rename Leer Fotos", 2, "", "Leer.idx", "0|0||0|0|0|\r\n\r\n\r\n"},
        Row{"DeleteWithoutYesIsRefused", "delete Leer", 2, "~braucht --yes", "Leer.idx", "0|0||0|0|0|\r\n\r\n\r\n"},
        Row{"DeleteWithYes", "delete Leer --yes", 0, "", "Leer.idx", nullptr},
        Row{"AddsAFolder", "add {S}/disc --label Neu --description Urlaub", 0, "Ordner: 1", "", ""},
        Row{"AddOfATakenLabel", "add {S}/disc --label Fotos", 2, "", "Fotos.idx", kFotos.c_str()},
        Row{"UnknownCommand", "bogus", 2, "cartulon-cli: unbekannter Befehl „bogus“; „cartulon-cli help“ zeigt die Befehle", "", ""},
        // A disc checked against its catalogue; copies across discs.
        Row{"VerifyOfAChangedDisc", "verify Fotos {S}/disc", 1, "fehlt auf dem Datenträger: \\Bilder\\p1.jpg", "", ""},
        Row{"VerifyAsTsv", "verify Fotos {S}/disc --format tsv", 1, "new\tfile\t\\Bilder\\a.txt\t\t6", "", ""},
        Row{"VerifyOfAnUnknownDisc", "verify Keine {S}/disc", 2, "", "", ""},
        Row{"VerifyOfNothing", "verify Fotos {S}/nope", 2, "~weder ein Ordner noch ein Abbild", "", ""},
        Row{"NoDuplicates", "duplicates", 1, "", "", ""},
        Row{"DuplicatesOfAnUnknownDisc", "duplicates --disc Keine", 2, "", "", ""},
        Row{"DuplicatesSizeRefused", "duplicates --min-size 5X", 2, "~--min-size nimmt eine Zahl von Bytes", "", ""},
        Row{"HelpShowsVerify", "help", 0, "~verify", "", ""},
        Row{"HelpShowsDuplicates", "help", 0, "~duplicates", "", ""},
        // Each copy a record; the group's fields, made once, blank out a tab as every field does.
        Row{"DuplicatesAsTsv",
            "add {S}/disc --label K1 >/dev/null && {S}/cartulon-cli --data-folder {D} add {S}/disc --label K2 >/dev/null && "
            "{S}/cartulon-cli --data-folder {D} duplicates --format tsv",
            0, "1\ta.txt\t6\tK2\\\\Bilder\\a.txt", "", ""},
        Row{"DuplicatesAsJson",
            "add {S}/disc --label K1 >/dev/null && {S}/cartulon-cli --data-folder {D} add {S}/disc --label K2 >/dev/null && "
            "{S}/cartulon-cli --data-folder {D} duplicates --format json",
            0, R"(  {"group": 1, "name": "a.txt", "size": 6, "hit": "K2\\\\Bilder\\a.txt"})", "", ""},
        // (A catalogue another program wrote: our walk never stores a tab in a name.)
        Row{"DuplicatesTsvBlanksATabInAName",
            "list >/dev/null && printf '0|0||0|0|0|\\r\\n\\r\\n\\r\\n\\\\a\\tb|1|R||\\r\\n' > {D}/T1.idx && "
            "cp {D}/T1.idx {D}/T2.idx && {S}/cartulon-cli --data-folder {D} duplicates --format tsv",
            0, "1\ta b\t1\tT2\\\\a b", "", ""},
        // Conventions: help everywhere, the version, refused command lines with the usage.
        Row{"Version", "--version", 0, "~cartulon-cli 1.", "", ""},
        Row{"VersionShort", "-V", 0, "~cartulon-cli 1.", "", ""},
        Row{"HelpOfACommand", "help search", 0, "~--size OP SIZE", "", ""},
        Row{"HelpOption", "search --help", 0, "~Aufruf: cartulon-cli search [--kind", "", ""},
        Row{"HelpOfAdd", "add --help", 0, "~Aufruf: cartulon-cli add ROOT --label LABEL", "", ""},
        Row{"ShortHelp", "show -h", 0, "~Aufruf: cartulon-cli show LABEL [FOLDER]", "", ""},
        Row{"UnknownOption", "list --foo", 2, "cartulon-cli list: unbekannte Option „--foo“", "", ""},
        Row{"UnknownOptionShowsUsage", "list --foo", 2, "Aufruf: cartulon-cli list [--format text|tsv|json]", "", ""},
        Row{"MissingValue", "search --name contains", 2, "cartulon-cli search: --name braucht OP TERM", "", ""},
        Row{"WordOutsideTheChoices", "search --kind x", 2,
            "cartulon-cli search: --kind nimmt files, folders, both, discs, nicht „x“", "", ""},
        Row{"MissingRequiredOption", "add {S}/disc", 2, "cartulon-cli add: --label fehlt", "", ""},
        Row{"TooManyArguments", "show a b c", 2, "cartulon-cli show: unerwartetes Argument „c“", "", ""},
        Row{"MissingDataFolderList", "list --data-folder {S}/nope", 2,
            "cartulon-cli list: den Datenordner „{S}/nope“ gibt es nicht", "", ""},
        // Sizes with units, dates in both forms, and refused values saying what was expected.
        Row{"SizeInK", "search --size greater 100K", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"SizeInKAboveAll", "search --size greater 200K --kind files", 1, "", "", ""},
        Row{"SizeFractionOfM", "search --size equal 0.0009765625M --kind files", 0, "Fotos\\\\liesmich.txt", "", ""},
        Row{"SizeWithAnUnknownUnit", "search --size greater 100X", 2, "~K, M, G oder T für Potenzen von 1024", "", ""},
        Row{"IsoDate", "search --date equal '2003-03-14 09:12:41' --kind files", 0, "Fotos\\\\Bilder\\p1.jpg", "", ""},
        Row{"DottedDate", "search --date less 14.03.2003 --kind files", 1, "", "", ""},
        Row{"ImpossibleDate", "search --date less 30.02.2003", 2, "~TT.MM.JJJJ [hh:mm[:ss]] oder JJJJ-MM-TT", "", ""},
        Row{"TextOperatorForASize", "search --size contains 1", 2,
            "cartulon-cli search: --size nimmt equal, not-equal, greater, less, nicht „contains“", "", ""},
        // Discs are hits only where a term can match them.
        Row{"NoDiscsForASize", "search --size greater 1", 0, "!Fotos", "", ""},
        Row{"NoDiscsForAnAttribute", "search --attributes R", 0, "!Leer", "", ""},
        Row{"DiscsOnly", "search --kind discs", 0, "Leer", "", ""},
        Row{"DiscByItsDescription", "search --name contains PHOTOS", 0, "Fotos", "", ""},
        Row{"DiscByDescriptionTerm", "search --description begins Photos", 0, "Fotos", "", ""},
        Row{"DescriptionRespectsCase", "search --description begins photos --kind discs", 1, "", "", ""},
        Row{"DiscsHaveNoSize", "search --kind discs --size greater 1", 2, "~nicht für Datenträger", "", ""},
        // Output for scripts.
        Row{"SearchAsJson", "search --name equal P1.JPG --format json", 0,
            R"(  {"kind": "file", "label": "Fotos", "path": "\\Bilder\\p1.jpg"})", "", ""},
        Row{"SearchAsTsvWithSlashes", "search --name contains p1 --format tsv --slashes", 0, "file\tFotos\t/Bilder/p1.jpg", "", ""},
        Row{"ShowAsJson", "show Fotos --format json", 0, R"(~"serial_number": -1029197328, "file_system": "CDFS")", "", ""},
        // A tab inside a value would split the record: a blank stands for it.
        Row{"FolderAsTsv", "show Fotos Bilder --format tsv", 0, "p1.jpg\t183442\tR\t14.03.2003 09:12:41\tFirst day", "", ""},
        Row{"FolderAsJson", "show Fotos . --format json", 0, R"(~"size_of_files": 1024, "files": 1, "file_list": [)", "", ""},
        Row{"StatsAsTsv", "stats --format tsv", 0, "discs\t2", "", ""},
        Row{"StatsAsJson", "stats --format json", 0, R"(~"total_size": 654311424, "folders": 1, "files": 2)", "", ""},
        Row{"ListAsJson", "list --format json", 0, R"(  {"label": "Fotos", "description": "Photos 2003"},)", "", ""},
        Row{"UnknownFormat", "list --format xml", 2, "~--format nimmt text, tsv, json, nicht „xml“", "", ""},
        // CT.ini's language for everything; the locale only where CT.ini names none.
        Row{"EnglishFromCtIni", "list --foo", 2, "cartulon-cli list: unknown option '--foo'", "", "", "10000"},
        Row{"CtIniBeforeTheLocale", "list --foo", 2, "~unbekannte Option", "", "", "0", "env LC_ALL=en_US.UTF-8"},
        Row{"LocaleWithoutCtIni", "list --foo", 2, "~unbekannte Option", "", "", "-1", "env -u LC_ALL LANG=de_DE.UTF-8"},
        Row{"EnglishLocaleWithoutCtIni", "stats", 0, "Number of discs: 2", "", "", "-1", "env LC_ALL=C"}),
    [](const testing::TestParamInfo<Row>& info) { return std::string(info.param.name); });

}  // namespace
