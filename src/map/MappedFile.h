#pragma once
// A file mapped read-only into memory for the lifetime of the object.

#include <QFile>

namespace mervola::map {

class MappedFile {
public:
    explicit MappedFile(const QString &path) : m_file(path)
    {
        if (!m_file.open(QIODevice::ReadOnly))
            return;
        m_size = m_file.size();
        // An empty file cannot be mapped but is still open: size 0.
        m_data = m_size > 0 ? m_file.map(0, m_size) : nullptr;
        m_open = m_size == 0 || m_data != nullptr;
    }
    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    bool isOpen() const { return m_open; }
    const uchar *data() const { return m_data; }
    qint64 size() const { return m_size; }

private:
    QFile m_file;
    uchar *m_data = nullptr;
    qint64 m_size = 0;
    bool m_open = false;
};

}  // namespace mervola::map
