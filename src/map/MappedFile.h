#pragma once
// A file mapped read-only into memory for the lifetime of the object. The
// whole file is mapped in at once (one system call instead of a page fault
// per page): the readers go through every byte of it.

#include <QString>

namespace mervola::map
{

class MappedFile
{
public:
    explicit MappedFile(const QString &path);
    ~MappedFile();
    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    bool isOpen() const { return m_open; }
    const uchar *data() const { return m_data; }
    qint64 size() const { return m_size; }

private:
    const uchar *m_data = nullptr;
    qint64 m_size = 0;
    bool m_open = false;
};

} // namespace mervola::map
