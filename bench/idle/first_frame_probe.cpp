#include "first_frame_probe.h"

#include <QEvent>
#include <QTimer>
#include <chrono>
#include <cstdio>

namespace corvane::bench {

namespace {

class FirstFrameFilter : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && !seen_) {
            seen_ = true;
            // Queued: runs after this paint has been drawn and flushed to the window.
            QTimer::singleShot(0, this, [this] {
                const auto now = std::chrono::system_clock::now().time_since_epoch();
                std::printf("first-frame %lld\n",
                            static_cast<long long>(
                                std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
                std::fflush(stdout);
                deleteLater();
            });
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    bool seen_ = false;
};

}  // namespace

void reportFirstFrame(QWidget& window) {
    window.installEventFilter(new FirstFrameFilter(&window));
}

}  // namespace corvane::bench
