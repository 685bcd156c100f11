#include "Platform/FileDownload.h"

#include "Foundation/Literals.h"
#include "Platform/HttpExchange.h"
#include "Support/Await.h"
#include "Support/LoopbackWeb.h"
#include "Support/Outcome.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace corvane {

namespace {

class DownloadTest : public testing::Test {
protected:
    /// Why the download failed; empty if it is whole.
    QString download(const QUrl& url)
    {
        progress.clear();
        const auto done = outcome(downloadFile(url, path,
            [this](DownloadProgress now) { progress.append(u"%1/%2"_s.arg(now.received).arg(now.total)); }, {}));
        EXPECT_TRUE(await([&] { return done->has_value(); }));
        return **done ? QString() : (*done)->error().message;
    }
    QString download() { return download(QUrl(web.base() + u"/model"_s)); }
    QByteArray header(const QByteArray& name) const { return web.requests().last().headers.value(name); }
    /// An answer that ends before its length.
    LoopbackWeb::Answer cut() const
    {
        LoopbackWeb::Answer answer;
        answer.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\nETag: \"v1\"\r\nConnection: close\r\n\r\n0123";
        return answer;
    }

    TemporaryHome home;
    LoopbackWeb web;
    const QString path = home.path(u"model"_s);
    QStringList progress;
};

}

TEST_F(DownloadTest, anInterruptedDownloadGoesOnWhereItStopped)
{
    web.answer(u"/model"_s, cut());
    EXPECT_NE(download(), QString());
    EXPECT_EQ(progress.last(), u"4/10"_s);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(home.read(u"model.part"_s), "0123");
    EXPECT_FALSE(QFileInfo(path + u".part"_s).permissions() & (QFile::ReadGroup | QFile::ReadOther));
    web.answer(u"/model"_s, LoopbackWeb::status(206, "456789", { "Content-Range: bytes 4-9/10", "ETag: \"v1\"" }));
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(header("range") + ' ' + header("if-range"), "bytes=4- \"v1\"");
    EXPECT_EQ(progress.last(), u"10/10"_s);
    EXPECT_EQ(home.read(u"model"_s), "0123456789");
    EXPECT_FALSE(QFile::exists(path + u".part"_s) || QFile::exists(path + u".origin"_s));
    web.answer(u"/model"_s, LoopbackWeb::status(200, "anew", { "ETag: W/\"v2\"" }));
    EXPECT_EQ(download(), QString()) << "an earlier file is replaced";
    EXPECT_EQ(header("range"), QByteArray());
    EXPECT_EQ(home.read(u"model"_s), "anew");
}

TEST_F(DownloadTest, whatChangedSinceOrComesFromElsewhereBeginsAnew)
{
    web.answer(u"/model"_s, cut());
    EXPECT_NE(download(), QString());
    web.answer(u"/model"_s, LoopbackWeb::status(200, "whole", { "ETag: \"v2\"" }));
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(header("if-range"), "\"v1\"");
    EXPECT_EQ(home.read(u"model"_s), "whole") << "the server has another version";

    web.answer(u"/model"_s, cut());
    EXPECT_NE(download(), QString());
    web.answer(u"/other"_s, LoopbackWeb::status(200, "other"));
    EXPECT_EQ(download(QUrl(web.base() + u"/other"_s)), QString());
    EXPECT_EQ(header("range"), QByteArray());
    EXPECT_EQ(home.read(u"model"_s), "other");

    web.answer(u"/model"_s, cut());
    EXPECT_NE(download(), QString());
    web.answer(u"/model"_s, LoopbackWeb::status(206, "89", { "Content-Range: bytes 8-9/10" }));
    EXPECT_EQ(download(), u"the file did not come whole"_s) << "another part than was asked for";
    EXPECT_EQ(home.read(u"model.part"_s), "0123");
    forgetDownload(path);
    EXPECT_FALSE(QFile::exists(path + u".part"_s) || QFile::exists(path + u".origin"_s));
}

TEST_F(DownloadTest, whatTheServerCannotResumeIsLoadedOnceMoreFromTheStart)
{
    // Without a name for the version, nothing can be resumed safely; the date of the last change is one.
    const auto part = [&](const QByteArray& version) {
        home.write(u"model.part"_s, "0123");
        home.write(u"model.origin"_s, QByteArray(web.base().toUtf8()) + "/model\n" + version);
    };
    part({});
    web.answer(u"/model"_s, LoopbackWeb::status(200, "whole"));
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(header("range"), QByteArray());
    EXPECT_EQ(header("accept-encoding"), "identity");
    EXPECT_EQ(progress.last(), u"5/5"_s);

    web.answer(u"/model"_s,
        { "HTTP/1.1 200 OK\r\nContent-Length: 9\r\nETag: W/\"weak\"\r\nLast-Modified: Monday\r\nConnection: "
          "close\r\n\r\n0123",
            false, false });
    EXPECT_NE(download(), QString());
    EXPECT_EQ(home.read(u"model.origin"_s), web.base().toUtf8() + "/model\nMonday");
    EXPECT_EQ(QFileInfo(path + u".origin"_s).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
    web.answer(u"/model"_s, LoopbackWeb::status(416));
    const auto done = outcome(downloadFile(QUrl(web.base() + u"/model"_s), path, {}, {}));
    EXPECT_TRUE(await([&] { return done->has_value(); }));
    EXPECT_EQ((*done)->error().message, u"the server answered 416"_s);
    EXPECT_EQ(web.requests().at(web.requests().size() - 2).headers.value("if-range"), "Monday");
    EXPECT_EQ(header("range"), QByteArray()) << "the second time from the start, and there is no third";
    EXPECT_FALSE(QFile::exists(path + u".part"_s));

    part("v1");
    web.answer(u"/model"_s, LoopbackWeb::status(206, "456", { "Content-Range: bytes 4-6/7" }));
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(progress.last(), u"7/7"_s);
    EXPECT_EQ(home.read(u"model"_s), "0123456");
    web.answer(u"/model"_s, { "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nno length", false, false });
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(progress.last(), u"9/0"_s);
    EXPECT_EQ(home.read(u"model"_s), "no length");
    web.answer(u"/model"_s, LoopbackWeb::redirect(u"/other"_s));
    web.answer(u"/other"_s, LoopbackWeb::status(200, "moved"));
    EXPECT_EQ(download(), QString());
    EXPECT_EQ(home.read(u"model"_s), "moved");
}

TEST_F(DownloadTest, whatCannotBeDownloadedSaysWhy)
{
    for (const char* url : { "http://models.example/m", "file:///etc/passwd", "https:///m", "ftp://localhost/m" })
        EXPECT_EQ(download(QUrl(QString::fromLatin1(url))), u"the address must begin with https://"_s) << url;
    web.answer(u"/model"_s, LoopbackWeb::status(404, "an error page"));
    EXPECT_EQ(download(), u"the server answered 404"_s);
    EXPECT_FALSE(QFile::exists(path + u".part"_s)) << "no error page is kept";
    web.answer(u"/model"_s, LoopbackWeb::status(304));
    EXPECT_EQ(download(), u"the server answered 304"_s);
    CancelHandle cancel;
    LoopbackWeb::Answer never;
    never.hang = true;
    web.answer(u"/model"_s, never);
    const auto done = outcome(downloadFile(QUrl(web.base() + u"/model"_s), path, {}, cancel));
    ASSERT_TRUE(await([&] { return web.requests().size() == 3; }));
    cancel.cancel();
    EXPECT_TRUE(await([&] { return done->has_value(); }));
    EXPECT_EQ((*done)->error().message, cancelled().error().message);
    const auto late = outcome(downloadFile(QUrl(web.base() + u"/model"_s), path, {}, cancel));
    EXPECT_TRUE(await([&] { return late->has_value(); }));
    EXPECT_EQ((*late)->error().message, cancelled().error().message);
    EXPECT_EQ(web.requests().size(), 3) << "nothing is asked for what was cancelled";
    rlimit files {};
    ::getrlimit(RLIMIT_FSIZE, &files);
    const auto ignored = ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small { 200, files.rlim_max };
    LoopbackWeb::Answer half = LoopbackWeb::status(200, QByteArray(500, 'x'));
    half.bytes.chop(100);
    half.hang = true;
    web.answer(u"/model"_s, half);
    ::setrlimit(RLIMIT_FSIZE, &small);
    const QString full = download();
    ::setrlimit(RLIMIT_FSIZE, &files);
    ::signal(SIGXFSZ, ignored);
    EXPECT_EQ(full, u"the file cannot be written (File too large)"_s) << "though more would come";
    EXPECT_FALSE(QFile::exists(path));
    forgetDownload(path);
    ASSERT_TRUE(QDir().mkpath(path + u".part"_s));
    web.answer(u"/model"_s, LoopbackWeb::status(200, "whole"));
    EXPECT_TRUE(download().startsWith("the file cannot be written"_L1));
}

TEST(HttpExchange, everyWholeAnswerCountsWhateverItSays)
{
    LoopbackWeb web;
    VirtualScheduler clock;
    QNetworkAccessManager manager;
    const auto ask = [&](const LoopbackWeb::Answer& answer, qint64 most = 100) {
        web.answer(u"/x"_s, answer);
        QNetworkRequest request(QUrl(web.base() + u"/x"_s));
        makePlain(request);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        return outcome(awaitReply(manager.get(request), &clock, { seconds(5), most }));
    };
    const auto said = [&](const std::shared_ptr<std::optional<Result<HttpReply>>>& done) {
        EXPECT_TRUE(await([&] { return done->has_value(); }));
        return **done ? u"%1 %2 %3%4"_s.arg(QString::number((**done)->status), QString::fromUtf8((**done)->body),
                            (**done)->isSuccess() ? u"success"_s : u"refusal"_s, (**done)->location)
                      : (*done)->error().message;
    };
    for (const int status : { 200, 299 })
        EXPECT_EQ(said(ask(LoopbackWeb::status(status, "a"))), u"%1 a success"_s.arg(status));
    for (const int status : { 400, 401, 404, 409, 418, 429, 500, 503, 599 })
        EXPECT_EQ(said(ask(LoopbackWeb::status(status, "a"))), u"%1 a refusal"_s.arg(status));
    EXPECT_EQ(said(ask(LoopbackWeb::redirect(u"/y"_s))), u"302  refusal/y"_s);
    EXPECT_EQ(said(ask(LoopbackWeb::status(200, "12345"), 5)), u"200 12345 success"_s);
    EXPECT_EQ(said(ask(LoopbackWeb::status(200, "123456"), 5)), u"The reply is too large."_s);
    const auto late = ask({ "HTTP/1.1 200 OK\r\n", true, false });
    ASSERT_TRUE(await([&] { return web.paths().size() == 15; }));
    clock.advance(seconds(5));
    EXPECT_EQ(said(late), u"The request timed out."_s);
    EXPECT_EQ(clock.pendingTimers(), 0);
    EXPECT_EQ(said(ask({ "HTTP/1.1 200 OK\r\nContent-Length: 10\r\nConnection: close\r\n\r\n0123", false, false })),
        u"Connection closed"_s);
}

TEST(HttpExchange, aCancelledRequestEndsAtOnceWithTheFirstReason)
{
    LoopbackWeb web;
    VirtualScheduler clock;
    QNetworkAccessManager manager;
    web.answer(u"/x"_s, { "HTTP/1.1 200 OK\r\n", true, false });
    const CancelHandle cancel;
    const auto ask = [&] {
        return outcome(
            awaitReply(manager.get(QNetworkRequest(QUrl(web.base() + u"/x"_s))), &clock, { seconds(5), 100 }, cancel));
    };
    const auto running = ask();
    ASSERT_TRUE(await([&] { return web.paths().size() == 1; }));
    cancel.cancel();
    clock.advance(seconds(5));
    const auto late = ask();
    for (const auto& done : { running, late }) {
        ASSERT_TRUE(await([&] { return done->has_value(); }));
        EXPECT_EQ((*done)->error().message, cancelled().error().message);
    }
    EXPECT_EQ(clock.pendingTimers(), 0);
}

}
