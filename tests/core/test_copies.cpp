// Checking a disc against its catalogue, and finding the files kept on more
// than one disc: both on real catalogue files in a scratch folder.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "core/duplicates.h"
#include "core/scan.h"
#include "core/verify.h"
#include "support/scratch.h"

namespace ct {
namespace {

using test::Scratch;

const char* const kCatalogue =
    "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003\r\n\r\n"
    "\\Bilder|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip | to the coast\r\n\r\n"
    "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|First day\r\n"
    "\\liesmich.txt|1024|R|14.03.2003 09:12:40|\r\n";

WalkRecord Rec(const std::string& path, std::int64_t size, const char* date = "14.03.2003 09:12:40") {
    return {"/mnt/cd" + path, Fixed::FromInt(size), "R", date};
}

TEST(VerifyDisc, FindsWhatChangedAndIgnoresDescriptions) {
    // The walk of the intact disc; each row changes it and names what verify must say.
    const WalkList folders0 = {Rec("/Bilder", 0), Rec("/Bilder/Urlaub", 0, "14.03.2003 09:12:41")};
    const WalkList files0 = {Rec("/Bilder/index.htm", 2310), Rec("/Bilder/Urlaub/p1.jpg", 183442, "14.03.2003 09:12:41"),
                             Rec("/liesmich.txt", 1024)};
    const struct {
        const char* name;
        void (*change)(WalkList& folders, WalkList& files);
        std::vector<std::string> expected;  // word, path, catalogue value, disc value
    } rows[] = {
        {"Identical", [](WalkList&, WalkList&) {}, {}},
        {"FileMissing", [](WalkList&, WalkList& f) { f.erase(f.begin() + 1); },
         {"missing \\Bilder\\Urlaub\\p1.jpg 183442 "}},
        {"FileNew", [](WalkList&, WalkList& f) { f.push_back(Rec("/neu.txt", 7)); }, {"new \\neu.txt  7"}},
        {"SizeChanged", [](WalkList&, WalkList& f) { f[2].Size = Fixed::FromInt(1025); },
         {"size \\liesmich.txt 1024 1025"}},
        {"TimeChanged", [](WalkList& d, WalkList&) { d[0].Date = "15.03.2003 09:12:40"; },
         {"time \\Bilder 14.03.2003 09:12:40 15.03.2003 09:12:40"}},
        {"FileBecameFolder",
         [](WalkList& d, WalkList& f) {
             f.pop_back();
             d.push_back(Rec("/liesmich.txt", 0));
         },
         {"new \\liesmich.txt  14.03.2003 09:12:40", "missing \\liesmich.txt 1024 "}},
    };
    Scratch s;
    const std::string catalogue = s.Write("Photos.idx", kCatalogue);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WalkList folders = folders0, files = files0;
        row.change(folders, files);
        const VerifyReport report = VerifyDisc(catalogue, "/mnt/cd/", folders, files);
        ASSERT_TRUE(report.opened);
        std::vector<std::string> said;
        for (const VerifyFinding& f : report.findings)
            said.push_back(std::string(DifferenceWord(f.kind)) + " " + f.path + " " + f.catalogueValue + " " +
                           f.discValue);
        EXPECT_EQ(said, row.expected);
    }
    EXPECT_FALSE(VerifyDisc(s / "none.idx", "/mnt/cd", folders0, files0).opened);
}

// Each group as "name size: hit hit ...", as FindDuplicates lists them.
std::vector<std::string> Said(const std::string& folder, const std::vector<std::string>& labels,
                              std::int64_t minSize, const std::function<bool(std::size_t, std::size_t)>& progress) {
    std::vector<std::string> said;
    const std::size_t told = FindDuplicates(folder, labels, minSize, [&](const DuplicateGroup& g) {
        std::string text = std::string(g.name) + " " + std::to_string(g.size) + ":";
        for (const std::string_view hit : g.hits) text.append(" ").append(hit);
        said.push_back(text);
        return true;
    }, progress);
    EXPECT_EQ(told, said.size());
    return said;
}

TEST(FindDuplicates, SameNameAndSizeOnTwoDiscsLargestFirst) {
    Scratch s;
    const std::string head = "0|0||0|0|0|\r\n\r\n\\A|||\r\n\r\n";
    s.Write("Eins.idx", head + "\\A\\Foto.JPG|500|R||\r\n\\klein.txt|3|R||\r\n\\nur hier.txt|9|R||\r\n"
                               "\\A\\gross.iso|-2|R||\r\n\\\xC3\xA4rger.txt|4|R||\r\n");
    s.Write("Zwei.idx", head + "\\foto.jpg|500|R||\r\n\\B\\foto.jpg|500|R||\r\n\\klein.txt|3|R||\r\n"
                               "\\Foto.jpg|501|R||\r\n\\gross.iso|-2|R||\r\n\\\xC3\x84RGER.TXT|4|R||\r\n");
    // Two copies on one disc are no copy across discs.
    s.Write("Drei.idx", head + "\\nur hier.txt|9|R||\r\n\\x\\nur hier.txt|9|R||\r\n");
    // Line ends of other systems, a folder-less disc, lines that can't be files,
    // other names of the same size.
    s.Write("Vier.idx", "0|0||0|0|0|\n\n\\A|||\n\n\\KLEIN.TXT|3|R||\n\\anders.txt|3||\n|x||\nkein Strich\n\n\\klein.txt|3|R||");
    // Groups of one size, in list order by name: Ä beside A, then the bytes.
    const std::string sameSize = head + "\\Birne.txt|7|R||\r\n\\\xC3\x84pfel.txt|7|R||\r\n\\apfel.txt|7|R||\r\n";
    s.Write("Sechs.idx", sameSize);
    s.Write("Sieben.idx", sameSize);
    s.Write("F\xC3\xBCnf.idx", "0|0||0|0|0|\r\r\r\\x\\Klein.txt|3|R||\r\\sonst.txt|3||\r\\y\\klein.txt|3||");
    // Sizes spelled as the number reader takes them: leading zeros, minus
    // zero, more than eight digits; too many digits or a letter is no size.
    const std::string sizes = "\\Film.mkv|12345678901234|R||\r\n\\riesig.bin|123456789012345678901|R||\r\n"
                              "\\kaputte Datei.txt|5:0|R||\r\n\\hoch.txt|1.23456789|R||\r\n\\leer.txt||R||\r\n"
                              "\\neun.txt|123456789|R||\r\n";
    s.Write("Acht.idx", head + "\\lang\\Ordner\\Bild.jpg|0500|R||\r\n\\null.txt|-0|R||\r\n" + sizes);
    s.Write("Neun.idx", head + sizes + "\\Bild.jpg|500|R||\r\n\\x\\null.txt|0|R||\r\n");
    // Names of more than eight bytes, folded eight at a time while they are
    // ASCII: an umlaut behind the first eight, a case apart on each side.
    s.Write("Zw\xC3\xB6lf.idx", head + "\\Urlaub am Meer 2003.JPG|42|R||\r\n\\Sommerfest K\xC3\xB6ln.jpg|43|R||\r\n");
    s.Write("Dreizehn.idx", head + "\\URLAUB AM MEER 2003.jpg|42|R||\r\n\\SOMMERFEST K\xC3\x96LN.JPG|43|R||\r\n");
    // Many lines, every hundredth on both discs: the chains of the parts then
    // run to many chunks, with copies all along them.
    std::string many[2] = {head, head};
    std::vector<std::string> shared;  // largest first
    for (int i = 1499; i >= 0; --i) {
        const std::string n = std::to_string(i);
        for (int d = 0; d < 2; ++d)
            many[d] += "\\" + (i % 100 ? std::to_string(d) + "-" : "gemeinsam-") + n + ".txt|" + n + "|R||\r\n";
        if (i % 100 == 0)
            shared.push_back("gemeinsam-" + n + ".txt " + n + ": Zehn\\\\gemeinsam-" + n + ".txt Elf\\\\gemeinsam-" + n + ".txt");
    }
    s.Write("Zehn.idx", many[0]);
    s.Write("Elf.idx", many[1]);
    // A third disc like the first: where every hash meets, a pass that has
    // learnt takes all its lines, more than its first piece holds.
    s.Write("Dreissig.idx", many[0]);
    std::vector<std::string> thrice;
    for (int i = 1499; i >= 0; --i) {
        const std::string n = std::to_string(i);
        thrice.push_back(i % 100 ? "0-" + n + ".txt " + n + ": Zehn\\\\0-" + n + ".txt Dreissig\\\\0-" + n + ".txt"
                                 : "gemeinsam-" + n + ".txt " + n + ": Zehn\\\\gemeinsam-" + n + ".txt Elf\\\\gemeinsam-" +
                                       n + ".txt Dreissig\\\\gemeinsam-" + n + ".txt");
    }
    // Seven discs, each with the same two files, then one on discs 4 to 7
    // only, in the same folder on every disc: a pass that has learnt the
    // first two takes their lines as it reads them, while the third's are
    // read again, and the copies of both are listed in disc order. Disc 7
    // spells the shared names in other cases.
    std::vector<std::string> seven;
    for (int d = 1; d <= 7; ++d) {
        const std::string label = "S" + std::to_string(d);
        seven.push_back(label);
        std::string lines = head + "\\A\\eigen-" + label + ".txt|5|R||\r\n\\A\\" + (d == 7 ? "ALT.TXT" : "alt.txt") +
                            "|11|R||\r\n";
        if (d >= 4) lines += "\\A\\neu.txt|22|R||\r\n";
        lines += "\\A\\" + std::string(d == 7 ? "Bild.JPG" : "bild.jpg") + "|33|R||\r\n";
        s.Write(label + ".idx", lines);
    }
    const struct {
        const char* name;
        std::vector<std::string> labels;
        std::int64_t minSize;
        std::vector<std::string> expected;  // name size: hits
    } rows[] = {
        {"All", {"Eins", "Zwei", "Drei"}, 0,
         {"gross.iso -2: Eins\\\\A\\gross.iso Zwei\\\\gross.iso",
          "Foto.JPG 500: Eins\\\\A\\Foto.JPG Zwei\\\\foto.jpg Zwei\\\\B\\foto.jpg",
          "nur hier.txt 9: Eins\\\\nur hier.txt Drei\\\\nur hier.txt Drei\\\\x\\nur hier.txt",
          "\xC3\xA4rger.txt 4: Eins\\\\\xC3\xA4rger.txt Zwei\\\\\xC3\x84RGER.TXT",
          "klein.txt 3: Eins\\\\klein.txt Zwei\\\\klein.txt"}},
        {"MinSize", {"Eins", "Zwei"}, 5,
         {"gross.iso -2: Eins\\\\A\\gross.iso Zwei\\\\gross.iso", "Foto.JPG 500: Eins\\\\A\\Foto.JPG Zwei\\\\foto.jpg Zwei\\\\B\\foto.jpg"}},
        {"OneDisc", {"Drei"}, 0, {}},
        // With every hash meeting, the lines of another disc make the two
        // copies on one disc candidates: still no copy across discs.
        {"TwiceOnOneDiscBesideAnother", {"Drei", "Sechs"}, 0, {}},
        {"OneSizeByName", {"Sechs", "Sieben"}, 0,
         {"apfel.txt 7: Sechs\\\\apfel.txt Sieben\\\\apfel.txt",
          "\xC3\x84pfel.txt 7: Sechs\\\\\xC3\x84pfel.txt Sieben\\\\\xC3\x84pfel.txt",
          "Birne.txt 7: Sechs\\\\Birne.txt Sieben\\\\Birne.txt"}},
        // Both copies of the first disc count once a later disc has one too.
        {"FirstDiscTwice", {"Zwei", "Eins"}, 0,
         {"gross.iso -2: Zwei\\\\gross.iso Eins\\\\A\\gross.iso",
          "foto.jpg 500: Zwei\\\\foto.jpg Zwei\\\\B\\foto.jpg Eins\\\\A\\Foto.JPG",
          "\xC3\x84RGER.TXT 4: Zwei\\\\\xC3\x84RGER.TXT Eins\\\\\xC3\xA4rger.txt",
          "klein.txt 3: Zwei\\\\klein.txt Eins\\\\klein.txt"}},
        {"SizeSpellings", {"Acht", "Neun"}, 0,
         {"Film.mkv 12345678901234: Acht\\\\Film.mkv Neun\\\\Film.mkv", "neun.txt 123456789: Acht\\\\neun.txt Neun\\\\neun.txt",
          "Bild.jpg 500: Acht\\\\lang\\Ordner\\Bild.jpg Neun\\\\Bild.jpg", "null.txt 0: Acht\\\\null.txt Neun\\\\x\\null.txt"}},
        {"ManyLines", {"Zehn", "Elf"}, 0, shared},
        {"ManyLinesThrice", {"Zehn", "Elf", "Dreissig"}, 0, thrice},
        {"FiveDiscs", {"Eins", "Zwei", "Drei", "Sechs", "Sieben"}, 0,
         {"gross.iso -2: Eins\\\\A\\gross.iso Zwei\\\\gross.iso",
          "Foto.JPG 500: Eins\\\\A\\Foto.JPG Zwei\\\\foto.jpg Zwei\\\\B\\foto.jpg",
          "nur hier.txt 9: Eins\\\\nur hier.txt Drei\\\\nur hier.txt Drei\\\\x\\nur hier.txt",
          "apfel.txt 7: Sechs\\\\apfel.txt Sieben\\\\apfel.txt",
          "\xC3\x84pfel.txt 7: Sechs\\\\\xC3\x84pfel.txt Sieben\\\\\xC3\x84pfel.txt",
          "Birne.txt 7: Sechs\\\\Birne.txt Sieben\\\\Birne.txt",
          "\xC3\xA4rger.txt 4: Eins\\\\\xC3\xA4rger.txt Zwei\\\\\xC3\x84RGER.TXT",
          "klein.txt 3: Eins\\\\klein.txt Zwei\\\\klein.txt"}},
        {"LongNames", {"Zw\xC3\xB6lf", "Dreizehn"}, 0,
         {"Sommerfest K\xC3\xB6ln.jpg 43: Zw\xC3\xB6lf\\\\Sommerfest K\xC3\xB6ln.jpg Dreizehn\\\\SOMMERFEST K\xC3\x96LN.JPG",
          "Urlaub am Meer 2003.JPG 42: Zw\xC3\xB6lf\\\\Urlaub am Meer 2003.JPG Dreizehn\\\\URLAUB AM MEER 2003.jpg"}},
        {"LineEnds", {"Vier", "F\xC3\xBCnf"}, 0,
         {"KLEIN.TXT 3: Vier\\\\KLEIN.TXT F\xC3\xBCnf\\\\x\\Klein.txt F\xC3\xBCnf\\\\y\\klein.txt"}},
        {"LearntOnTheWay", seven, 0,
         {"bild.jpg 33: S1\\\\A\\bild.jpg S2\\\\A\\bild.jpg S3\\\\A\\bild.jpg S4\\\\A\\bild.jpg S5\\\\A\\bild.jpg "
          "S6\\\\A\\bild.jpg S7\\\\A\\Bild.JPG",
          "neu.txt 22: S4\\\\A\\neu.txt S5\\\\A\\neu.txt S6\\\\A\\neu.txt S7\\\\A\\neu.txt",
          "alt.txt 11: S1\\\\A\\alt.txt S2\\\\A\\alt.txt S3\\\\A\\alt.txt S4\\\\A\\alt.txt S5\\\\A\\alt.txt "
          "S6\\\\A\\alt.txt S7\\\\A\\ALT.TXT"}},
    };
    // Hashes that all meet, and reads of a few bytes, must change nothing.
    // So must the portable path of the line cutting, one to four threads,
    // records folded into pairs from the first line on, chunks of one line
    // each, which lines that waited only in part (looked at before they were
    // full, and then not folded) leave astride two chunks, and passes that
    // learn which pairs are many after every disc and take their later lines
    // as they read them (with hashes that all meet: every line once learnt).
    for (const auto& [bits, block, vectors, threads, foldAt, chunk, learnAt] :
         {std::tuple{64, 1 << 16, true, 2u, 1 << 20, 1024, 2048}, {0, 1, true, 3u, 1, 1024, 2048},
          {1, 5, false, 1u, 2, 1024, 2048}, {3, 64, true, 4u, 1 << 20, 1024, 2048}, {64, 64, true, 1u, 1, 1024, 2048},
          {64, 64, true, 2u, 3, 1024, 2048}, {64, 64, true, 1u, 3, 8, 2048}, {64, 1 << 16, true, 3u, 5, 8, 2048},
          {64, 1 << 16, true, 4u, 1, 8, 2048}, {64, 1 << 16, true, 1u, 1 << 20, 1024, 1},
          {64, 7, true, 2u, 1 << 20, 8, 1}, {0, 1 << 16, true, 1u, 1 << 20, 1024, 1}, {64, 64, true, 1u, 40, 1024, 1}})
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " bits " + std::to_string(bits) + " block " + std::to_string(block) +
                     " threads " + std::to_string(threads) + " fold " + std::to_string(foldAt) + " chunk " +
                     std::to_string(chunk) + " learn " + std::to_string(learnAt));
        SetDuplicateSeamsForTesting(bits, static_cast<std::size_t>(block), threads, static_cast<std::size_t>(foldAt),
                                    static_cast<std::size_t>(chunk), static_cast<std::size_t>(learnAt));
        scan::UseVectors(vectors);
        std::vector<std::size_t> heard;
        const auto progress = [&](std::size_t disc, std::size_t discs) {
            heard.push_back(disc * 10 + discs);
            return true;
        };
        EXPECT_EQ(Said(s.Path(), row.labels, row.minSize, progress), row.expected);
        // Every disc heard once, in order, however the threads took them.
        std::vector<std::size_t> all;
        for (std::size_t d = 1; d <= row.labels.size(); ++d) all.push_back(d * 10 + row.labels.size());
        EXPECT_EQ(heard, all);
    }
    // Where the system gives fewer threads than asked for, the calling
    // thread does the rest: the same groups, every disc heard in order.
    for (const unsigned granted : {0u, 1u}) {
        SetDuplicateSeamsForTesting(64, 1 << 16, 3);
        LimitThreadsForTesting(granted);
        std::vector<std::size_t> heard;
        EXPECT_EQ(Said(s.Path(), rows[0].labels, 0, [&](std::size_t disc, std::size_t) {
                      heard.push_back(disc);
                      return true;
                  }),
                  rows[0].expected)
            << granted;
        LimitThreadsForTesting(UINT_MAX);
        EXPECT_EQ(heard, (std::vector<std::size_t>{1, 2, 3})) << granted;
    }
    // Stopped at the first disc, no disc is read: no copies. A progress that
    // throws ends the run as well, with every thread.
    SetDuplicateSeamsForTesting(64, 1 << 16, 3);
    EXPECT_TRUE(Said(s.Path(), {"Eins", "Zwei", "Drei"}, 0, [](std::size_t, std::size_t) { return false; }).empty());
    EXPECT_THROW(Said(s.Path(), {"Eins", "Zwei", "Drei"}, 0,
                      [](std::size_t disc, std::size_t) -> bool { return disc < 2 || (throw 7, false); }),
                 int);
    // A sink that says no more ends the listing there.
    std::size_t heard = 0;
    EXPECT_EQ(FindDuplicates(s.Path(), {"Eins", "Zwei", "Drei"}, 0, [&](const DuplicateGroup&) { return ++heard < 2; }),
              2u);
    EXPECT_EQ(heard, 2u);
    SetDuplicateSeamsForTesting(64, 1 << 16);
    scan::UseVectors(true);
}

}  // namespace
}  // namespace ct
