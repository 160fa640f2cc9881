// packrd OUT.rd LANG1 FILE1 [LANG2 FILE2 ...]
//
// Packs the text files of the languages into one resource file. A text's id
// is its language number plus its base id. Any fault in a text file stops the
// build with a message that names the file, the line and the id, and leaves
// no half-written output behind.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "core/rdpack.h"

namespace {

int Fail(const std::string& message) {
    std::fprintf(stderr, "packrd: %s\n", message.c_str());
    return 1;
}

bool ReadFile(const std::string& path, std::string& content) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

bool ParseLanguage(const std::string& text, int& language) {
    if (text.empty() || text.size() > 5) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    language = std::stoi(text);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4 || (argc - 2) % 2 != 0)
        return Fail("usage: packrd OUT.rd LANG1 FILE1 [LANG2 FILE2 ...]");
    const std::string outPath = argv[1];

    std::vector<ct::RDEntry> all;
    std::set<int> ids;
    for (int i = 2; i + 1 < argc; i += 2) {
        int language = 0;
        if (!ParseLanguage(argv[i], language))
            return Fail(std::string("language number '") + argv[i] + "' isn't a number");
        const std::string file = argv[i + 1];
        std::string content;
        if (!ReadFile(file, content)) return Fail(file + ": can't be read");
        std::vector<ct::RDEntry> texts;
        std::string error;
        if (!ct::ParseTexts(content, file, texts, &error)) return Fail(error);
        for (ct::RDEntry& e : texts) {
            e.id += language;
            if (!ids.insert(e.id).second)
                return Fail(file + ": id " + std::to_string(e.id) +
                            " is given by two languages (language numbers overlap)");
            all.push_back(std::move(e));
        }
    }

    std::string bytes, error;
    if (!ct::RDPack(all, bytes, &error)) return Fail(error);

    // Written beside the target and renamed over it, so a failed build never
    // leaves a cut-short CT.rd that would look complete to the program.
    const std::string partPath = outPath + ".part";
    {
        std::ofstream out(partPath, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::remove(partPath.c_str());
            return Fail(outPath + ": can't be written");
        }
    }
    if (std::rename(partPath.c_str(), outPath.c_str()) != 0) {
        std::remove(partPath.c_str());
        return Fail(outPath + ": can't be replaced");
    }
    return 0;
}
