#include "ProgramVersion.h"

QString programVersion() {
    return QStringLiteral(VIRN_PROGRAM_VERSION);
}
