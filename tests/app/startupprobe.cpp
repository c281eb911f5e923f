// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Loaded into the built call UI with LD_PRELOAD: prints every step of its start-up and of its end
// as it is taken, and then takes it. No seam shows the order of these steps, because main() calls
// Qt directly, and most of the steps have no effect that another process can see at once. Each
// function is replaced under its linker name and takes the registers that may hold its arguments.
// Arguments are printed where they matter.

#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QUrl>
#include <QVariant>
#include <QtQml/qqmlprivate.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <link.h>

namespace {

using Register = void *;
using Function = Register (*)(Register, Register, Register, Register, Register, Register);

template <typename Original = Function>
Original next(const char *symbol)
{
    void *function = dlsym(RTLD_NEXT, symbol);
    if (function == nullptr)
        std::abort();
    return reinterpret_cast<Original>(function);
}

const QString &string(Register r)
{
    return *static_cast<const QString *>(r);
}

QString boolean(Register r)
{
    return QString::number((reinterpret_cast<quintptr>(r) & 0xff) != 0);
}

void print(const char *step, const QString &detail)
{
    std::fprintf(stderr, "step: %s%s%s\n", step, detail.isEmpty() ? "" : " ",
                 qUtf8Printable(detail));
}

/// Whether that is code of the program itself. Where Qt's libraries are linked such that a
/// library's calls of its own functions can be replaced, as on ARM, these calls arrive here too.
bool isInProgram(const void *code)
{
    Dl_info info;
    link_map *map = nullptr;
    return dladdr1(code, &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) != 0
        && map->l_name[0] == '\0';
}

bool isTaskFile(const char *path)
{
    return std::strncmp(path, "/sys/fs/cgroup/", 15) == 0;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): these are the names that the linker knows.
#define STEP(symbol, step, detail)                                                                 \
    extern "C" Q_DECL_EXPORT Register symbol(Register a, [[maybe_unused]] Register b,              \
                                             [[maybe_unused]] Register c, Register d, Register e,  \
                                             Register f)                                           \
    {                                                                                              \
        if (isInProgram(__builtin_return_address(0)))                                              \
            print(step, detail);                                                                   \
        return next(#symbol)(a, b, c, d, e, f);                                                    \
    }

STEP(_ZN12QQuickWindow21setDefaultAlphaBufferEb, "setDefaultAlphaBuffer", boolean(a))
STEP(_ZN15QGuiApplicationC1ERiPPci, "QGuiApplication", {})
STEP(_ZN16QCoreApplication18setApplicationNameERK7QString, "setApplicationName", string(a))
STEP(_ZN16QCoreApplication21setApplicationVersionERK7QString, "setApplicationVersion", string(a))
STEP(_ZN16QCoreApplication19setOrganizationNameERK7QString, "setOrganizationName", string(a))
STEP(_ZN16QCoreApplication21setOrganizationDomainERK7QString, "setOrganizationDomain", string(a))
STEP(_ZN15QGuiApplication25setQuitOnLastWindowClosedEb, "setQuitOnLastWindowClosed", boolean(a))
STEP(_ZN11QTranslatorC1EP7QObject, "QTranslator", {})
STEP(_ZN11QTranslatorD1Ev, "~QTranslator", {})
STEP(_ZN11QTranslator4loadERK7QStringS2_S2_S2_, "load catalogue",
     string(b) + QLatin1String(" from ") + string(c))
STEP(_ZN11QTranslator4loadERK7QLocaleRK7QStringS5_S5_S5_, "load catalogue of locale",
     string(c) + string(d) + QLatin1String(" from ") + string(e))
STEP(_ZN16QCoreApplication17installTranslatorEP11QTranslator, "installTranslator", {})
STEP(_ZN7QWindow8setTitleERK7QString, "setTitle", string(b))
STEP(dconf_client_read, "read setting", QString::fromUtf8(static_cast<const char *>(b)))
STEP(_ZN11QQmlContext18setContextPropertyERK7QStringRK8QVariant, "setContextProperty", string(b))
STEP(_ZN11QQmlContext18setContextPropertyERK7QStringP7QObject, "setContextProperty", string(b))
STEP(_ZN10QQuickView9setSourceERK4QUrl, "setSource", static_cast<const QUrl *>(b)->toString())
STEP(_ZN7QWindow14showFullScreenEv, "showFullScreen", {})
STEP(_ZN7QWindow15requestActivateEv, "requestActivate", {})
STEP(_ZN7QWindow5raiseEv, "raise", {})
STEP(_ZN15QGuiApplication4execEv, "exec", {})

/// Signals report the destruction, because the destructors are not called by their linker names.
extern "C" Q_DECL_EXPORT Register _ZN10QQuickViewC1EP7QWindow(Register a, Register b, Register c,
                                                              Register d, Register e, Register f)
{
    print("QQuickView", {});
    auto *result = next("_ZN10QQuickViewC1EP7QWindow")(a, b, c, d, e, f);
    QObject::connect(static_cast<QObject *>(a), &QObject::destroyed,
                     [] { print("~QQuickView", {}); });
    QObject::connect(QCoreApplication::instance(), &QObject::destroyed,
                     [] { print("~QGuiApplication", {}); });
    return result;
}

extern "C" Q_DECL_EXPORT Register _ZN11QQmlPrivate11qmlregisterENS_16RegistrationTypeEPv(
    Register a, Register b, Register c, Register d, Register e, Register f)
{
    const auto *type = static_cast<const QQmlPrivate::RegisterType *>(b);
    const bool isType = reinterpret_cast<quintptr>(a) == QQmlPrivate::TypeRegistration;
    if (isType && type->uri != nullptr && std::strcmp(type->uri, "com.nimbo.parley") == 0)
        print("register", QString::fromLatin1(type->elementName));
    return next("_ZN11QQmlPrivate11qmlregisterENS_16RegistrationTypeEPv")(a, b, c, d, e, f);
}

/// Has the types of the original, because processors differ in where they expect the address of a
/// result that is an object.
extern "C" Q_DECL_EXPORT QMetaObject::Connection
_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14ConnectionTypeE(const QObject *sender, const char *signal,
                                                       const QObject *receiver, const char *slot,
                                                       Qt::ConnectionType type)
{
    using Connect = QMetaObject::Connection (*)(const QObject *, const char *, const QObject *,
                                                const char *, Qt::ConnectionType);
    constexpr auto symbol = "_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14ConnectionTypeE";
    if (std::strcmp(signal, SIGNAL(quit())) == 0)
        print("connect quit to", QString::fromLatin1(slot));
    return next<Connect>(symbol)(sender, signal, receiver, slot, type);
}

extern "C" Q_DECL_EXPORT Register _ZN5QFileD1Ev(Register a, Register b, Register c, Register d,
                                                Register e, Register f)
{
    const QString name = static_cast<const QFile *>(a)->fileName();
    if (isTaskFile(qUtf8Printable(name)))
        print("~QFile", name);
    return next("_ZN5QFileD1Ev")(a, b, c, d, e, f);
}

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    if (isTaskFile(path))
        std::fprintf(stderr, "step: open %s\n", path);
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, unsigned);
    va_end(arguments);
    using Open = int (*)(const char *, int, ...);
    return reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open64"))(path, flags, mode);
}
// NOLINTEND(bugprone-reserved-identifier)
