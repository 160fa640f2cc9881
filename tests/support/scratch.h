// A scratch folder per test, made by mkdtemp so two runs never share one, and
// removed with everything in it afterwards (write permission given back first,
// so a read-only folder doesn't stay behind).
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>

namespace ct::test {

class Scratch {
public:
    Scratch() {
        std::string pattern = (std::filesystem::temp_directory_path() / "cartulon.XXXXXX").string();
        char* made = mkdtemp(pattern.data());
        path_ = made ? made : "";
    }
    ~Scratch() {
        if (path_.empty()) return;
        std::error_code ec;
        for (auto it = std::filesystem::recursive_directory_iterator(
                 path_, std::filesystem::directory_options::skip_permission_denied, ec);
             !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
            if (it->is_directory(ec) && !it->is_symlink(ec)) chmod(it->path().c_str(), 0755);
        }
        chmod(path_.c_str(), 0755);
        std::filesystem::remove_all(path_, ec);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::string& Path() const { return path_; }
    std::string operator/(const std::string& rel) const { return path_ + "/" + rel; }

    // Writes `bytes` at `rel`, making the folders on the way; returns the full path.
    std::string Write(const std::string& rel, const std::string& bytes) const {
        const std::string full = *this / rel;
        std::filesystem::create_directories(std::filesystem::path(full).parent_path());
        std::ofstream(full, std::ios::binary) << bytes;
        return full;
    }
    std::string Mkdir(const std::string& rel) const {
        std::filesystem::create_directories(*this / rel);
        return *this / rel;
    }
    std::string File(const std::string& rel, const std::string& bytes = "") const { return Write(rel, bytes); }
    std::string Folder(const std::string& rel) const { return Mkdir(rel); }

private:
    std::string path_;
};

inline std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// Lines joined by CR LF, one after every line: a catalogue as the program writes it.
inline std::string CrLf(std::initializer_list<const char*> lines) {
    std::string out;
    for (const char* l : lines) (out += l) += "\r\n";
    return out;
}

}  // namespace ct::test
