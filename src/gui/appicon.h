// The program's icon: frmHaupt's window icon, which every dialog takes over.
#pragma once

#include <QIcon>

namespace ct {
QIcon AppIcon();
}
