// Preview, printing and export of the estimate through the office engine.

#include "TForm1.h"

void TForm1::setupOutput() {}
