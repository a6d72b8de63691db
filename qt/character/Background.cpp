#include "qt/character/Background.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace voxmate::qt
{

Background::Background(std::function<void(std::stop_token)> work, std::function<void()> done)
    : done_(std::move(done)), context_(new QObject)
{
    thread_ = std::jthread([this, work = std::move(work)](std::stop_token stop) {
        std::exception_ptr error;
        try {
            work(std::move(stop));
        } catch (...) {
            error = std::current_exception();
        }
        QMetaObject::invokeMethod(
            context_, [this, error] { Done(error); }, Qt::QueuedConnection);
    });
}

Background::~Background()
{
    thread_.request_stop();
    if (thread_.joinable())
        thread_.join();
    // A report still in the event queue is no longer wanted.
    QCoreApplication::removePostedEvents(context_);
    context_->deleteLater();
}

void Background::Done(const std::exception_ptr& error)
{
    // Taken out first, because the callback or the error's handler may destroy this object.
    const std::function<void()> done = std::exchange(done_, nullptr);
    if (error)
        std::rethrow_exception(error);
    if (done)
        done();
}

} // namespace voxmate::qt
