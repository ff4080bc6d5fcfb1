#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

class QLabel;

namespace velbrix {

class SymbolLabel;

// How the last uninstall or putting back has ended, until it is seen; with
// what could not be moved and why.
class UninstallResultCard final : public Card {
public:
    explicit UninstallResultCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void show(const QString &message);
    void showFailures();

    ViewContext _context;
    SymbolLabel *_symbol;
    QLabel *_message;
    QWidget *_failures;
    bool _wasPutBack = false; // what is going on is no uninstall
};

} // namespace velbrix
