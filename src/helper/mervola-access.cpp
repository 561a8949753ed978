// mervola-access: reads an Access database for the program in a process of
// its own (see platform/access/AccessFile.h).
#include "platform/access/AccessFile.h"

int main(int argc, char **argv)
{
    return mervola::accessHelperMain(argc, argv);
}
