// cartulon-cli list: the discs as the disc list shows them: every catalogue
// in the data folder and its sub-folders, sorted without regard to case.
#include <algorithm>
#include <filesystem>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/text.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunList(Context& ctx) {
    if (!ctx.args.positional.empty()) {
        *ctx.err << "usage: cartulon-cli list [--data-folder DIR]\n";
        return kError;
    }
    std::error_code ec;
    if (!std::filesystem::is_directory(ctx.dataFolder, ec)) {
        *ctx.err << "cartulon-cli: the data folder '" << ctx.dataFolder << "' doesn't exist\n";
        return kError;
    }
    WalkList folders, files;
    WalkFolder(ctx.dataFolder, folders, files);
    std::vector<std::pair<std::string, std::string>> keyed;
    for (std::string& label : LabelsOf(files)) keyed.emplace_back(UpperCase(DecodeLine(label)), std::move(label));
    std::stable_sort(keyed.begin(), keyed.end());
    for (const auto& [key, label] : keyed) *ctx.out << label << "\n";
    return keyed.empty() ? kNothing : kDone;
}

Registration reg{{"list", "list                         the discs of the data folder", {}, &RunList}};

}  // namespace

}  // namespace ct::cli
