#pragma once

#include "support/TestImages.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QString>

namespace vellumine::test {

/// A certificate authority made for one run of the tests, and the key and certificate that it
/// signed for a server on 127.0.0.1.
struct TestCertificates {
    QSslCertificate authority;
    QSslCertificate server;
    QSslKey serverKey;

    /// Makes them with the openssl program; a fatal error where that fails.
    [[nodiscard]] static TestCertificates create();
};

} // namespace vellumine::test
