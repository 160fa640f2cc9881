#include <filesystem>
#include <ostream>

#include "cli.h"
#include "core/editing.h"
#include "platform/image.h"

namespace ct::cli {

bool CatalogueOfLabel(Context& ctx, const std::string& label, std::string& cataloguePath) {
    const Failure failure = ResolveLabel(ctx.dataFolder, label, cataloguePath);
    if (!failure) return true;
    ctx.Fail(failure);
    return false;
}

int RefuseImage(const Context& ctx, const Failure& why) {
    if (why.code == FailCode::LibraryMissing)
        return ctx.Refuse({"das Abbild kann nicht gelesen werden: %1", "the image can't be read: %1"},
                          {FailureText(why, ctx.language)});
    return ctx.Refuse({"das Abbild „%1“ kann nicht gelesen werden (beschädigt oder unvollständig)",
                       "the image '%1' can't be read (damaged or incomplete)"},
                      {why.path});
}

bool DiscRootReadable(Context& ctx, const std::string& root) {
    if (IsDiscImage(root)) {
        if (const Failure why = ImageFailure(root)) {
            RefuseImage(ctx, why);
            return false;
        }
        return true;
    }
    std::error_code ec;
    if (std::filesystem::is_directory(root, ec)) return true;
    ctx.Refuse({"„%1“ ist weder ein Ordner noch ein Abbild eines Datenträgers",
                "'%1' is neither a folder nor a disc image"}, {root});
    return false;
}

}  // namespace ct::cli
