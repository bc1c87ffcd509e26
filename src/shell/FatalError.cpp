#include "shell/FatalError.h"

#include "core/MessageBox.h"
#include "core/ProgramInfo.h"
#include "core/RegistryStore.h"
#include "core/RuntimeError.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <new>

namespace tarvo {

namespace {

// Offscreen and minimal platforms have nobody to read (or dismiss) a dialog.
bool canShowDialogs() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

} // namespace

QString fatalErrorText(const std::exception& error) {
    if (const auto* e = dynamic_cast<const RuntimeError*>(&error))
        return e->report();
    if (const auto* e = dynamic_cast<const StoreError*>(&error))
        return e->message();
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return RuntimeError(vberr::OutOfMemory).report();
    return RuntimeError(vberr::InternalError, {}, {}, QString::fromLocal8Bit(error.what())).report();
}

void endWithFatalError(const std::exception& error, MessageBox* box) {
    const QString text = fatalErrorText(error);
    std::fprintf(stderr, "%s\n", qPrintable(text));
    std::fflush(stderr);
    if (box && canShowDialogs())
        box->show(text, QLatin1String(kProgramTitle), MessageBox::Buttons::Ok, MessageBox::Icon::Critical);
    std::fflush(stdout);
    // End at once, as the runtime does: no event, timer or destructor of the half-run program runs after
    // the error. Every store write is already durable when its call returns.
    std::_Exit(1);
}

} // namespace tarvo
