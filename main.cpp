#include "app/Startup.h"

int main(int argc, char **argv) {
    return virnMain(argc, argv);
}
