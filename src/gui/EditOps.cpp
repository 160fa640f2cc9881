#include "gui/EditOps.h"

#include "core/fileops.h"

namespace ct {

namespace {
FileOps* g_ops = nullptr;
}

FileOps& EditFileOps() { return g_ops ? *g_ops : SystemFileOps(); }
void SetEditFileOps(FileOps* ops) { g_ops = ops; }

}  // namespace ct
