#include "platform/Legend.h"

namespace mervola {

QString legendClassText(const LegendClass &c)
{
    return c.count >= 0 ? QStringLiteral("%1 (%2)").arg(c.label).arg(c.count) : c.label;
}

}  // namespace mervola
