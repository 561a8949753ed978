#pragma once
// Real disk faults for tests: a small tmpfs that can be filled to the last
// byte, and a read-only view of a folder. Both need the right to mount
// (root); available() says whether this machine grants it.

#include <QString>

namespace mervola::test
{

class ScopedMount
{
public:
    ScopedMount() = default;
    ~ScopedMount();
    ScopedMount(const ScopedMount &) = delete;
    ScopedMount &operator=(const ScopedMount &) = delete;

    // Whether mounting works here (checked once).
    static bool available();

    // A tmpfs of `bytes` at `folder` (created when missing).
    bool tmpfs(const QString &folder, qint64 bytes);
    // `source` seen read-only at `folder`.
    bool readOnlyView(const QString &source, const QString &folder);
    void release();

private:
    QString m_folder;
};

// Fills the file system of `folder` until a write fails for lack of space.
bool fillDisk(const QString &folder);
// Bytes used by the files under `folder`.
qint64 folderSize(const QString &folder);

} // namespace mervola::test
