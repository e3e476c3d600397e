#pragma once
// One office engine session for the package's tests, on its own thread as the program runs it, shared
// by every case of the binary (the engine starts once).

class OfficeService;

OfficeService &packageEngine();
