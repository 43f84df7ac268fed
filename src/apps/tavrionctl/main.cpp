#include "apps/tavrionctl/Command.h"

int main(int argumentCount, char** arguments) {
    return tavrion::ctl::runCommandLine(argumentCount, arguments);
}
