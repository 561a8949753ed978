#pragma once
// The grid's model over an AttributeTable: one row per shown record, one
// column per field (hidden columns stay in the model; the view hides them).
// Values come from the in-memory columns, never from SQL per cell.

#include "data/AttributeTable.h"

#include <QAbstractTableModel>

namespace mervola {

class AttributeTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit AttributeTableModel(AttributeTable *table, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Call after the table's rows, captions or visibility changed.
    void reload();

    // The text of a value as the grid shows it.
    static QString displayText(const QVariant &value);

private:
    AttributeTable *m_table;
};

}  // namespace mervola
