// tarvo: the break reminder.
#include "RunTarvo.h"

int main(int argc, char** argv) {
    return tarvo::runTarvo(argc, argv);
}
