#pragma once

// The limits every transfer from the server lives under. An answer larger than it may be is stopped as soon as
// its announced length or its received bytes show it, not when it ends; one that trickles, moving less than
// 1 KiB a second over a whole window, is stopped as too slow, where Qt's own time-out would wait for ever as
// long as a byte comes now and then. The window is the reply's transfer time-out (60 s in use).

#include <QtGlobal>

#include <memory>

class QNetworkReply;

struct TransferVerdict {
    bool tooLarge = false;
    bool tooSlow = false;

    [[nodiscard]] bool stopped() const { return tooLarge || tooSlow; }
};

// Watches `reply` until it ends, aborting it when it breaks a limit; the verdict says which one.
[[nodiscard]] std::shared_ptr<const TransferVerdict> guardTransfer(QNetworkReply *reply, qint64 maxBytes);
