// A scratch folder per test, removed with everything in it afterwards (write
// permission given back first, so a read-only folder doesn't stay behind).
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace ct::test {

class Scratch {
public:
    Scratch() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ctplat.XXXXXX").string();
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

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    std::string Folder(const std::string& name) const {
        std::filesystem::create_directories(*this / name);
        return *this / name;
    }
    std::string File(const std::string& name, const std::string& content = "") const {
        std::ofstream(*this / name, std::ios::binary) << content;
        return *this / name;
    }

private:
    std::string path_;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace ct::test
