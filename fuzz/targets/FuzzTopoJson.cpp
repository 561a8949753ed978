#include "FuzzTargets.h"

#include "atlas/TopoJsonReader.h"

#include <QByteArray>

namespace mervola::fuzz
{

// The object is the one the builder reads from its municipalities file.
int fuzzTopoJson(const std::uint8_t *data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char *>(data), qsizetype(size));
    auto layer = atlas::parseTopoJson(json, QStringLiteral("comuni"));
    if (layer)
        (void)layer->adjacency();
    return 0;
}

} // namespace mervola::fuzz
