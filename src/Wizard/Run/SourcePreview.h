#pragma once

#include "Import/Full/FullMessage.h"

#include <QObject>

#include <functional>
#include <memory>
#include <thread>

/// Looks at a source before it is imported, in a thread of its own: how it begins, and how many types and losses an
/// import of it has by each of its importer's readings.
class SourcePreview : public QObject
{
    Q_OBJECT

public:
    struct Source
    {
        MsgUIDescriptor* importer = nullptr;
        std::vector<CString> names; ///< files and folders, from the root
        CString basePath;
    };

    /// How an import ends by one reading.
    struct Count
    {
        bool isKnown = false; ///< false: it has not been read so yet, or can't be
        int types = 0;
        std::size_t losses = 0;
        QString failure; ///< the first line of the error; "" if there was none

        bool fails() const { return types == 0 && !failure.isEmpty(); }
    };

    SourcePreview() = default;
    ~SourcePreview() override; ///< waits for the thread, which ends soon

    /// The bytes up to which a source is counted without being asked to.
    static constexpr std::uint64_t kSmall = 50'000'000;

    /// Drops what was in hand and looks at another source. What is larger than kSmall is counted only with `isWanted`.
    void start(const Source& source, bool isWanted = false);

    /// Drops what is in hand; nothing more is told of it.
    void drop();

Q_SIGNALS:
    /// The source begins with `text`, its first lines; "" if it can't be shown as text. Comes first, and alone if there
    /// is no such source (`size` is 0 then). `isCounted` says whether counts follow.
    void begun(const QString& text, quint64 size, bool isCounted);

    /// What is known so far. Comes once for each reading.
    void counted(const SourcePreview::Count& literal, const SourcePreview::Count& full);

private:
    struct Job;

    void look(const Source& source, bool isWanted, const std::shared_ptr<Job>& job);
    static Count count(std::unique_ptr<MsgBase> message, const Source& source, const std::vector<CString>& files,
                       const Job& job);
    void tell(const std::shared_ptr<Job>& job, std::function<void()> signal);

    std::shared_ptr<Job> current;
    std::thread worker;
};
