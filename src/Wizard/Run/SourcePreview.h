#pragma once

#include "Import/Full/FullMessage.h"

#include <QObject>

#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

/// Previews a source before the import, in a background thread: its first lines, and the number of types and losses
/// with each reading of its importer. Create and use it in the window's thread, in which the signals come.
///
/// A new preview cancels the one before and waits for its end in its own thread, so the window never waits. The thread
/// has importers of its own and shares nothing with the wizard's; it shows no messages.
class SourcePreview : public QObject
{
    Q_OBJECT

public:
    /// The source to preview. Copied into the thread.
    struct Source
    {
        MsgUIDescriptor* importer = nullptr; ///< never null in start()
        std::vector<CString> names;          ///< absolute names of files and folders
        CString basePath;                    ///< of the types
        std::vector<CString> catalogs = {};  ///< for the full reading, by absolute names
    };

    /// The result of an import with one reading.
    struct Count
    {
        bool isKnown = false; ///< false if not read in this way yet, or not possible
        int types = 0;
        std::size_t losses = 0;
        QString failure; ///< the first error; empty if there is none

        /// Returns whether the import failed without types. An importer can go on after an error, so an error alone is
        /// no failure.
        bool fails() const { return types == 0 && !failure.isEmpty(); }
    };

    /// Cancels the current preview and starts another. A source of more than 50 MB is only counted if `isWanted`.
    /// `source` needs an importer and at least one name.
    void start(const Source& source, bool isWanted);

    /// Cancels the current preview; emits no more signals for it.
    void drop() { worker.request_stop(); }

Q_SIGNALS:
    /// Emitted first, with the first lines of the source; `text` is empty if it can't be shown as text. The only signal
    /// if the source doesn't exist (`size` is 0 then). `isCounted` if counts follow.
    void begun(const QString& text, quint64 size, bool isCounted);

    /// Emitted once for each reading, with the results so far. A reading that was not possible stays unknown.
    void counted(const SourcePreview::Count& literal, const SourcePreview::Count& full);

private:
    void look(const Source& source, bool isWanted, const std::stop_token& dropped);
    static Count count(std::unique_ptr<MsgBase> message, const Source& source, const std::vector<CString>& files,
                       const std::stop_token& dropped);
    void tell(const std::stop_token& dropped, std::function<void()> signal);

    std::jthread worker; // its destructor cancels the preview and waits
};
