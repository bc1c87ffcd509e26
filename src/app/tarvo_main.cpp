// tarvo: the break reminder.
#include "shell/RunTarvo.h"

int main(int argc, char** argv) {
    return tarvo::runTarvo(argc, argv);
}
