#pragma once
// One copy of the program per atlas home. The lock is the file
// ".mervola.lock" in the home, held with an exclusive advisory lock
// (flock) for the life of the process. The kernel drops that lock when the
// process ends, however it ends, so the rule is simply: the home is in use
// only while a live process holds the lock. Whatever a lock file contains
// (nothing, garbage, another host's name, a date years old, the process
// number of a copy running on another home) is taken over when nobody holds
// it; a folder left in its place is moved out of the way.

#include <QString>

namespace mervola
{

class InstanceLock
{
public:
    enum class State { Held, InUse, CannotWrite };

    explicit InstanceLock(QString homeFolder);
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    State acquire();
    // After CannotWrite: the Italian message naming the folder and the reason.
    QString message() const { return m_message; }
    QString path() const { return m_path; }

private:
    QString m_home;
    QString m_path;
    QString m_message;
    int m_fd = -1;
};

namespace LockText
{
inline const QString kInUse = QStringLiteral("L'applicazione è già in esecuzione.");
// "%1" the folder, "%2" the reason (systemErrorReason()).
inline const QString kCannotWrite =
    QStringLiteral("Impossibile scrivere nella cartella dell'atlante %1: %2.\n"
                   "Mervola deve poter scrivere in questa cartella (impostazioni dei temi e tabelle di lavoro). "
                   "Liberare spazio sul disco o avviare il programma con --home su una cartella scrivibile.");
} // namespace LockText

} // namespace mervola
