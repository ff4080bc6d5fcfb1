#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/linux/media/mpv/PictureSink.h"

#include <QImage>

#include <functional>
#include <memory>
#include <mutex>

namespace velbrix {

// Delivers pictures as images on the main thread. Where it is too slow for
// them, the newest takes the place of the one that still waits.
class ImageSink final : public PictureSink {
public:
    ImageSink(std::shared_ptr<MainThreadRelay> relay, std::function<void(QImage)> deliver)
        : _relay(std::move(relay)), _mailbox(std::make_shared<Mailbox>())
    {
        _mailbox->deliver = std::move(deliver);
    }

    void resize(QSize size) override { _size = size; }
    std::optional<Canvas> next() override
    {
        _image = QImage(_size, QImage::Format_RGB32);
        if (_image.isNull())
            return std::nullopt;
        return Canvas{_image.bits(), static_cast<std::size_t>(_image.bytesPerLine()), _size};
    }
    void present() override
    {
        {
            const std::scoped_lock lock(_mailbox->lock);
            const bool isWaiting = !_mailbox->newest.isNull();
            _mailbox->newest = std::move(_image);
            if (isWaiting)
                return;
        }
        _relay->post([mailbox = _mailbox] {
            std::unique_lock lock(mailbox->lock);
            QImage image = std::exchange(mailbox->newest, {});
            lock.unlock();
            mailbox->deliver(std::move(image));
        });
    }
    void repaint() override {}
    int descriptor() const override { return -1; }
    void collect() override {}

private:
    struct Mailbox {
        std::function<void(QImage)> deliver;
        std::mutex lock;
        QImage newest; // null when none waits
    };

    const std::shared_ptr<MainThreadRelay> _relay;
    const std::shared_ptr<Mailbox> _mailbox;
    QSize _size;
    QImage _image;
};

} // namespace velbrix
