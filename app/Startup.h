#pragma once
// The program entry: the application, the main window, the data module, the message loop; and the
// command-line modes that work without a window.

int virnMain(int argc, char **argv);
