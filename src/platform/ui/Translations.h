#pragma once
// Italian everywhere: Qt's own translations (the standard file dialogs,
// "Salva", "Annulla", "Cerca in:") and the Italian default locale, so that
// numbers read with the decimal comma.

namespace mervola {

// Installs the Italian translations of Qt found on the system and makes
// Italian the default locale. Returns false when the translation files are
// missing (the dialogs then keep Qt's own English texts).
bool installItalian();

}  // namespace mervola
