#include <ostream>

#include "cli.h"
#include "core/editing.h"

namespace ct::cli {

bool CatalogueOfLabel(Context& ctx, const std::string& label, std::string& cataloguePath) {
    const Failure failure = ResolveLabel(ctx.dataFolder, label, cataloguePath);
    if (!failure) return true;
    ctx.Fail(failure);
    return false;
}

}  // namespace ct::cli
