#include "ProgramIcon.h"

// The resource lives in a static library, whose initialiser the linker would drop unless someone
// refers to it; the macro has to be used outside any namespace.
static void initProgramIconResource() {
    Q_INIT_RESOURCE(tarvo);
}

namespace tarvo {

QIcon programIcon() {
    static const bool initialised = (initProgramIconResource(), true);
    Q_UNUSED(initialised);
    return QIcon(QStringLiteral(":/icons/tarvo.svg"));
}

} // namespace tarvo
