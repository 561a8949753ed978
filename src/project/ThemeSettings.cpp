#include "project/ThemeSettings.h"

#include <algorithm>

namespace mervola {

namespace {

QString fieldAt(const QStringList &parts, int index, const QString &fallback = QString())
{
    return index < parts.size() ? parts.at(index) : fallback;
}

std::int16_t toInt16(const QString &text)
{
    bool ok = false;
    const int v = text.trimmed().toInt(&ok);
    return ok ? std::int16_t(std::clamp(v, -32768, 32767)) : 0;
}

std::int32_t toInt32(const QString &text)
{
    bool ok = false;
    const qlonglong v = text.trimmed().toLongLong(&ok);
    // Colour numbers beyond the signed range wrap as the 32-bit field would.
    return ok ? std::int32_t(std::uint32_t(v)) : 0;
}

}  // namespace

QString themeKeyName(ThemeKey key)
{
    static const char *const names[kThemeKeyCount] = {
        "JOIN",  "STRUCTJOIN",          "WORKSPACE", "BASE",            "SIMBOLO",  "LABEL",
        "TIPOCLASSIFICAZIONE", "CAMPO", "CLASSIFICAZIONE", "OUTLINE", "VISIBILE",
    };
    return QString::fromLatin1(names[int(key)]);
}

const std::array<ThemeKey, kThemeKeyCount> &themeKeys()
{
    static const std::array<ThemeKey, kThemeKeyCount> keys = {
        ThemeKey::Join,     ThemeKey::StructJoin, ThemeKey::Workspace,           ThemeKey::Base,
        ThemeKey::Simbolo,  ThemeKey::Label,      ThemeKey::TipoClassificazione, ThemeKey::Campo,
        ThemeKey::Classificazione, ThemeKey::Outline, ThemeKey::Visibile,
    };
    return keys;
}

ClassItem ClassItem::parse(const QString &item)
{
    const QStringList f = splitFields(item);
    ClassItem c;
    c.symbolStyle = toInt16(fieldAt(f, 0));
    c.value = fieldAt(f, 1);
    c.outline = fieldAt(f, 2, QStringLiteral("1"));
    if (c.outline.isEmpty())
        c.outline = QStringLiteral("1");
    c.fillColor = toInt32(fieldAt(f, 3));
    c.label = fieldAt(f, 4);
    c.outlineColor = toInt32(fieldAt(f, 5));
    c.drawn = fieldAt(f, 6, QStringLiteral("1"));
    return c;
}

QString ClassItem::format() const
{
    return joinFields({QString::number(symbolStyle), value, outline, QString::number(fillColor), label,
                       QString::number(outlineColor), drawn});
}

JoinFields JoinFields::parse(const QString &value)
{
    const QStringList f = splitFields(value);
    const QString none = QStringLiteral("-1");
    JoinFields j;
    j.pathDb = fieldAt(f, 0, none);
    j.nomeDb = fieldAt(f, 1, none);
    j.nomeTabella = fieldAt(f, 2, none);
    j.campoJoinInt = fieldAt(f, 3, none);
    j.campoJoinExt = fieldAt(f, 4, none);
    j.shpCollegato = fieldAt(f, 5, none);
    return j;
}

QString JoinFields::format() const
{
    return joinFields({pathDb, nomeDb, nomeTabella, campoJoinInt, campoJoinExt, shpCollegato});
}

SymbolFields SymbolFields::parse(const QString &value)
{
    const QStringList f = splitFields(value);
    SymbolFields s;
    s.symbolType = toInt16(fieldAt(f, 0, QStringLiteral("2")));
    s.size = toInt16(fieldAt(f, 1));
    s.style = toInt16(fieldAt(f, 2));
    s.color = toInt32(fieldAt(f, 3));
    s.outlineColor = toInt32(fieldAt(f, 4));
    return s;
}

QString SymbolFields::format() const
{
    return joinFields({QString::number(symbolType), QString::number(size), QString::number(style),
                       QString::number(color), symbolType == 2 ? QString::number(outlineColor) : QStringLiteral("0")});
}

CampoFields CampoFields::parse(const QString &value)
{
    const QStringList f = splitFields(value);
    CampoFields c;
    c.field = fieldAt(f, 0, QStringLiteral("0"));
    c.classes = toInt16(fieldAt(f, 1));
    c.method = toInt16(fieldAt(f, 2));
    c.ramp = toInt16(fieldAt(f, 3));
    return c;
}

QString CampoFields::format() const
{
    return joinFields({field, QString::number(classes), QString::number(method), QString::number(ramp)});
}

QList<ClassItem> parseClassItems(const QString &value)
{
    QList<ClassItem> out;
    if (value.isEmpty() || value == QLatin1String("0"))
        return out;
    for (const QString &item : splitFields(value, QLatin1Char('|')))
        out << ClassItem::parse(item);
    return out;
}

QString formatClassItems(const QList<ClassItem> &items)
{
    if (items.isEmpty())
        return QStringLiteral("0");
    QString out;
    for (const ClassItem &c : items)
        out += c.format() + QLatin1Char('|');
    return out;
}

void ThemeSettings::parseRaw()
{
    join = JoinFields::parse(rawValue(ThemeKey::Join));

    structJoin = splitFields(rawValue(ThemeKey::StructJoin));
    if (!structJoin.isEmpty() && structJoin.first() == QLatin1String("*"))
        structJoin.clear();

    workspace = rawValue(ThemeKey::Workspace);

    const QStringList base = splitFields(rawValue(ThemeKey::Base));
    shapefile = fieldAt(base, 0);
    layerName = fieldAt(base, 1);

    if (has(ThemeKey::Simbolo))
        symbol = SymbolFields::parse(rawValue(ThemeKey::Simbolo));

    // A one-character value ("*") switches labels off.
    const QString label = rawValue(ThemeKey::Label);
    labelField = label.size() <= 1 ? QString() : label;

    classificationType = has(ThemeKey::TipoClassificazione) ? rawValue(ThemeKey::TipoClassificazione)
                                                            : QStringLiteral("0");
    if (classificationType.isEmpty())
        classificationType = QStringLiteral("0");
    campo = CampoFields::parse(rawValue(ThemeKey::Campo));
    classes = parseClassItems(rawValue(ThemeKey::Classificazione));
    outline = !has(ThemeKey::Outline) || rawValue(ThemeKey::Outline) != QLatin1String("0");
    visible = rawValue(ThemeKey::Visibile) == QLatin1String("1");
}

ThemeSettings readThemeSettings(const ProfileFile &profile, const QString &section)
{
    ThemeSettings s;
    s.section = section;
    for (ThemeKey key : themeKeys()) {
        int count = 0;
        const QString v = profile.read(section, themeKeyName(key).toLower(), &count);
        if (count > 0)
            s.raw[size_t(key)] = v;
    }
    s.parseRaw();
    return s;
}

ThemeSettings readThemeSettingsFile(const QString &path, const QString &section)
{
    return readThemeSettings(ProfileFile::load(path), section);
}

bool isMountainCommunityTheme(const QString &themeName)
{
    const QString p = themeName.left(4).toUpper();
    return p == QLatin1String("CMON") || p == QLatin1String("COMM");
}

bool isMunicipalityTheme(const QString &themeName) { return themeName.left(4).toUpper() == QLatin1String("COMU"); }

}  // namespace mervola
