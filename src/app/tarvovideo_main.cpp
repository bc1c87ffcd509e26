// tarvovideo: plays the exercise videos inside the program's player, on its behalf (see
// platform/linux/MciMediaCommands.h). Not meant to be started by hand.
#include "platform/linux/LinuxPlatform.h"

int main(int argc, char** argv) {
    return tarvo::runVideoHelper(argc, argv);
}
