// tarvovideo: plays the exercise videos inside the program's player, on its behalf (see
// video/TarvoVideo.h). Not meant to be started by hand.
#include "video/TarvoVideo.h"

int main(int argc, char** argv) {
    return tarvo::runTarvoVideo(argc, argv);
}
