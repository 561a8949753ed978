#include "data/AttributeTableModel.h"

#include "platform/NumberText.h"

#include <QDate>

namespace mervola {

AttributeTableModel::AttributeTableModel(AttributeTable *table, QObject *parent)
    : QAbstractTableModel(parent), m_table(table)
{
}

int AttributeTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_table->shownCount();
}

int AttributeTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_table->columnCount();
}

QString AttributeTableModel::displayText(const QVariant &value)
{
    if (value.isNull())
        return QString();
    switch (value.typeId()) {
    case QMetaType::Double:
        return decimalText(value.toDouble());  // the decimal comma, as everywhere a user reads numbers
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("Vero") : QStringLiteral("Falso");
    case QMetaType::QDate:
        return value.toDate().toString(QStringLiteral("dd/MM/yyyy"));
    default:
        return value.toString();
    }
}

QVariant AttributeTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_table->shownCount() || index.column() >= m_table->columnCount())
        return {};
    if (role == Qt::DisplayRole)
        return displayText(m_table->value(index.row(), index.column()));
    if (role == Qt::TextAlignmentRole && m_table->isNumeric(index.column()))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant AttributeTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && section >= 0 && section < m_table->columnCount()) {
        if (role == Qt::DisplayRole)
            return m_table->column(section).caption;
        if (role == Qt::ToolTipRole)
            return m_table->column(section).field.name;
    }
    if (orientation == Qt::Vertical && role == Qt::DisplayRole)
        return section + 1;
    return QAbstractTableModel::headerData(section, orientation, role);
}

void AttributeTableModel::reload()
{
    beginResetModel();
    endResetModel();
}

}  // namespace mervola
