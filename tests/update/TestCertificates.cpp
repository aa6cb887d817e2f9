#include "update/TestCertificates.h"

#include <QFile>
#include <QProcess>

namespace vellumine::test {
namespace {

void openssl(const TemporaryFolder& folder, const char* arguments)
{
    QProcess process;
    process.setWorkingDirectory(QFile::decodeName(folder.path().c_str()));
    process.start(
        QStringLiteral("openssl"), QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts));
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("openssl %s: %s", arguments, process.readAllStandardError().constData());
    }
}

QByteArray content(const TemporaryFolder& folder, const char* name)
{
    QFile file(QFile::decodeName((folder / name).c_str()));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s cannot be read", name);
    }
    return file.readAll();
}

} // namespace

TestCertificates TestCertificates::create()
{
    const TemporaryFolder folder;
    writeFile(folder / "san", std::string_view("subjectAltName=IP:127.0.0.1\n"));
    openssl(folder,
        "req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=Authority"
        " -addext keyUsage=critical,keyCertSign -keyout authority.key -out authority.pem");
    openssl(folder,
        "req -new -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=127.0.0.1"
        " -keyout server.key -out server.csr");
    openssl(folder,
        "x509 -req -in server.csr -CA authority.pem -CAkey authority.key -CAcreateserial -days 2"
        " -extfile san -out server.pem");
    return { .authority = QSslCertificate(content(folder, "authority.pem")),
        .server = QSslCertificate(content(folder, "server.pem")),
        .serverKey = QSslKey(content(folder, "server.key"), QSsl::Ec) };
}

} // namespace vellumine::test
