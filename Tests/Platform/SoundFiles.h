#pragma once

#include <QProcess>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

namespace corvane {

inline QByteArray output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(20'000)) << qPrintable(program);
    return process.readAllStandardOutput().trimmed();
}

/// The audio format of a file as "codec,rate,channels".
inline QByteArray formatOf(const QString& path)
{
    return output("ffprobe",
        { "-v", "error", "-show_entries", "stream=codec_name,sample_rate,channels", "-of", "csv=p=0", path });
}

inline double secondsOf(const QString& path)
{
    return output("ffprobe", { "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path }).toDouble();
}

inline float peakOf(const QString& path)
{
    const QByteArray raw = output("ffmpeg", { "-v", "error", "-i", path, "-f", "f32le", "-" });
    float peak = 0;
    for (qsizetype at = 0; at + 4 <= raw.size(); at += 4) {
        float sample = 0;
        std::memcpy(&sample, raw.constData() + at, 4);
        peak = std::max(peak, std::fabs(sample));
    }
    return peak;
}

}
