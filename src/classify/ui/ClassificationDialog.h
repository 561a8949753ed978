#pragma once
// The classification window: picks a field (by category), the legend type
// (classes or "Valori unici"), the method, the number of classes and the
// colour ramp, shows the classes in the symbol grid flxSimboli with a
// histogram, and gives back the Classification. It changes nothing else.

#include "classify/ClassRange.h"
#include "classify/FieldColumn.h"
#include "platform/Result.h"

#include <QDialog>
#include <QMap>
#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QTableWidget;

namespace mervola::classify {

class HistogramWidget;

struct CandidateField {
    QString name;         // attribute field
    QString description;  // text shown to the user
    QString category;     // category name; empty = none
    bool numeric = true;  // a text field can only be shown by unique values
};

// Gives the values of a field of the theme's table.
using FieldValuesFn = std::function<Result<FieldColumn>(const QString &field)>;

class ClassificationDialog : public QDialog {
    Q_OBJECT
public:
    ClassificationDialog(const QString &theme, const QList<CandidateField> &fields, FieldValuesFn values,
                         const Classification &current, QWidget *parent = nullptr);

    // The classification as shown, with the choices of the window.
    Classification classification() const;

    // Grid columns.
    enum Column { ColColore = 0, ColValore = 1, ColLabel = 2, ColElementi = 3 };

    // Runs the chosen method on the chosen field (also run on every change
    // of field, legend type, method or class count).
    void classify();
    // Opens the class limits editor on a class row (modal).
    void editLimits(int row);
    // Fills the grid with the natural breaks of the field in the chosen
    // number of classes, as limits of the user's own ("PERSONALI").
    void fillNaturalBreaks();

private:
    void buildUi(const QString &theme);
    void fillCategories();
    void fillFields();
    void selectCurrent(const Classification &current);
    const FieldColumn *column(const QString &field);
    void refresh();
    void applyLimits(int row, const QString &valueText);
    void onCellDoubleClicked(int row, int column);
    void onCellChanged(int row, int column);
    QString currentField() const;
    bool isTextField(const QString &field) const;
    // The choices that gave the classes shown, put back into the boxes when
    // a new choice is refused (too many values, "No", no data).
    struct Choices {
        QString field;
        int legendType = 0;
        int method = 0;
        int classCount = 4;
    };
    Choices currentChoices() const;
    void showChoices(const Choices &c);
    // Method and class count only apply to classes; "Classi" only to numbers.
    void updateChoiceStates();
    // The GVF label and, when shown, the method comparison.
    void refreshFit();
    void refreshComparison();

    QList<CandidateField> m_fields;
    FieldValuesFn m_values;
    QMap<QString, FieldColumn> m_columns;
    Classification m_class;
    bool m_refreshing = false;
    Choices m_shown;

    QComboBox *m_categoria = nullptr;
    QComboBox *m_campo = nullptr;
    QComboBox *m_tipoLegenda = nullptr;
    QComboBox *m_metodo = nullptr;
    QComboBox *m_classi = nullptr;
    QComboBox *m_ramp = nullptr;
    QTableWidget *m_grid = nullptr;
    HistogramWidget *m_histogram = nullptr;
    QLabel *m_summary = nullptr;
    QLabel *m_gvf = nullptr;
    QPushButton *m_natural = nullptr;
    QPushButton *m_compare = nullptr;
    QTableWidget *m_comparison = nullptr;
    QCheckBox *m_logAxis = nullptr;
    QString m_comparedKey; // field and class count the comparison shows
};

}  // namespace mervola::classify
