#pragma once
// The program entry: the application, the main window, the data module, the message loop; and the
// command-line modes that work without a window.

class QApplication;

int virnMain(int argc, char **argv);

// What the program sets up before its first window: names, the Russian locale, and Qt's own Russian
// texts (standard buttons, file and print dialogs). False when Qt's translations are not installed
// (the dialogs then speak English; the program works all the same).
bool prepareApplication(QApplication &app);
