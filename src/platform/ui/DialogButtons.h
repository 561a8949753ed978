#pragma once
// The "OK" / "Annulla" row that closes the program's small windows.

class QHBoxLayout;
class QPushButton;
class QString;
class QWidget;

namespace mervola {

struct OkCancelRow {
    QHBoxLayout *layout;
    QPushButton *ok;      // the default button
    QPushButton *cancel;
};

// Buttons aligned right, with the given object names; the caller connects them.
OkCancelRow okCancelRow(QWidget *parent, const QString &okName, const QString &cancelName);

}  // namespace mervola
