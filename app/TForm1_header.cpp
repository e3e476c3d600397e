// The estimate's header: customer, object, contractor, number, date, title.

#include "TForm1.h"

void TForm1::setupHeader() {}
