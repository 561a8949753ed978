#include "app/ExitFlow.h"

#include "platform/Messages.h"

namespace mervola {

bool confirmExit(bool projectModified, const std::function<bool()> &saveProject)
{
    if (projectModified) {
        const MsgAnswer a = showMessage(MsgStyle::YesNoCancel | MsgStyle::Exclamation,
                                        QStringLiteral("Salvare le modifiche al progetto?"));
        if (a == MsgAnswer::Cancel)
            return false;
        if (a == MsgAnswer::Yes)
            return saveProject ? saveProject() : false;
        return true;
    }
    return showMessage(MsgStyle::YesNo | MsgStyle::Question, QStringLiteral("Uscire dall'applicazione?"))
           == MsgAnswer::Yes;
}

}  // namespace mervola
