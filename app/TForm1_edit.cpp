// The estimate grid's editing commands, totals, coefficients and the crew sheet.

#include "TForm1.h"

void TForm1::setupEditor() {}
