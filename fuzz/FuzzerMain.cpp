// libFuzzer's entry points for the target named at build time.
#include "FuzzTargets.h"

#include <QCoreApplication>

#include <cstdlib>

namespace
{

const mervola::fuzz::Target *target = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    target = mervola::fuzz::findTarget(MERVOLA_FUZZ_TARGET);
    if (!target)
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return target->fuzz(data, size);
}
