#include "gui/appicon.h"

namespace ct {

QIcon AppIcon() {
    QIcon icon;
    for (int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/cartulon-%1.png").arg(size), QSize(size, size));
    return icon;
}

}  // namespace ct
