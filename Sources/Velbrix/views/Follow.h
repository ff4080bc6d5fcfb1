#pragma once

#include <QObject>

#include <utility>

namespace velbrix {

// Calls now, and again after every change while the receiver lives.
template <typename Sender, typename Signal, typename Call>
void follow(const Sender &sender, Signal signal, QObject *receiver, Call call)
{
    call();
    QObject::connect(&sender, signal, receiver, std::move(call));
}

} // namespace velbrix
