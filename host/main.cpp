// hbs: a thin host to try every part of the library by hand.

#include "host/Program.h"

int main(int argc, char** argv) {
    return host::runProgram(argc, argv);
}
