// The rate grid beside the estimate: price lists, navigation, live search, insertion.

#include "TForm1.h"

void TForm1::setupPrice() {}
