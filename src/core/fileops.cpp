#include "core/fileops.h"

namespace ct {

bool WriteWholeFile(FileOps& ops, const std::string& path, std::string_view content,
                    std::string* error) {
    const std::string scratch = path + ".part";
    std::string why;
    std::unique_ptr<OutFile> out = ops.Create(scratch, &why);
    if (!out) {
        if (error)
            *error = "cannot create \"" + scratch + "\"" + (why.empty() ? "" : ": " + why);
        return false;
    }
    const char* failed = nullptr;
    if (!out->Write(content))
        failed = "writing";
    else if (!out->Sync())
        failed = "flushing to disk";
    const bool closed = out->Close();
    if (!failed && !closed) failed = "closing";
    out.reset();
    if (failed) {
        std::string ignored;
        ops.Remove(scratch, &ignored);
        if (error) *error = std::string(failed) + " \"" + scratch + "\" failed (disk full or no longer writable?)";
        return false;
    }
    if (!ops.Rename(scratch, path, &why)) {
        std::string ignored;
        ops.Remove(scratch, &ignored);
        if (error)
            *error = "cannot put \"" + scratch + "\" in place of \"" + path + "\"" +
                     (why.empty() ? "" : ": " + why);
        return false;
    }
    return true;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return {};
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace ct
