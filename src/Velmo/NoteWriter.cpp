#include "Velmo/NoteWriter.h"

#include "Editor/Model/MarkdownFile.h"

#include <QThread>
#include <future>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;

NoteWriter::NoteWriter()
{
    m_thread.reset(QThread::create([this] { run(); }));
    m_thread->setObjectName(QStringLiteral("com.velmo.note-write"));
    m_thread->start(QThread::HighPriority);
}

NoteWriter::~NoteWriter()
{
    {
        const std::lock_guard lock(m_lock);
        m_stopping = true;
    }
    m_wake.notify_one();
    m_thread->wait();
}

void NoteWriter::run()
{
    while (true) {
        std::function<void()> job;
        {
            std::unique_lock lock(m_lock);
            m_wake.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
            if (m_jobs.empty())
                return; // stopping, and everything handed over is done
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job();
    }
}

void NoteWriter::enqueue(std::function<void()> job)
{
    {
        const std::lock_guard lock(m_lock);
        m_jobs.push_back(std::move(job));
    }
    m_wake.notify_one();
}

NoteWriter::Outcome NoteWriter::defaultPerform(const Write& write)
{
    const MarkdownFile file(write.url);
    // A file that is gone is simply written again; one whose date moved is read, and only a
    // text that is none of ours is a conflict.
    if (const auto current = file.modificationDate(); current && current != write.diskDate) {
        try {
            const QString onDisk = file.read(true);
            if (onDisk != write.lastSavedText && onDisk != write.text)
                return Conflicted{onDisk};
        } catch (const MarkdownFileError&) {
            // Unreadable: treated as unchanged.
        }
    }
    try {
        file.write(write.text);
    } catch (const MarkdownFileError& error) {
        return Failed{error.message()};
    }
    return Written{file.modificationDate()};
}

NoteWriter::Write NoteWriter::start(const Write& write, Completion completion)
{
    m_writing.insert(write.id);
    enqueue([write, perform = perform, completion = std::move(completion), owner = this] {
        Outcome outcome = perform(write);
        // Posted, never waited for: the writer's thread must not block on the main thread.
        QMetaObject::invokeMethod(owner, [owner, write, outcome = std::move(outcome), completion] {
            owner->m_writing.remove(write.id);
            if (completion)
                completion(write, outcome);
        }, Qt::QueuedConnection);
    });
    return write;
}

void NoteWriter::waitForDisk()
{
    std::promise<void> done;
    std::future<void> finished = done.get_future();
    enqueue([&done] { done.set_value(); });
    finished.wait();
}

}
