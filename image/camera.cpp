#include "image/camera.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

#include <QCamera>
#include <QCameraDevice>
#include <QEventLoop>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>

#include <optional>

namespace dv::image {

namespace {
constexpr int kFirstFrameTimeoutMs = 10000;

std::optional<QCameraDevice> FindCamera(const QString& device)
{
    if (device.isEmpty()) {
        const QCameraDevice d = QMediaDevices::defaultVideoInput();
        return d.isNull() ? std::nullopt : std::optional(d);
    }
    for (const QCameraDevice& d : QMediaDevices::videoInputs()) {
        if (d.description() == device || QString::fromUtf8(d.id()) == device) return d;
    }
    return std::nullopt;
}
}  // namespace

QStringList CameraNames()
{
    QStringList names;
    for (const QCameraDevice& d : QMediaDevices::videoInputs()) {
        names << QStringLiteral("%1 (%2)").arg(d.description(), QString::fromUtf8(d.id()));
    }
    return names;
}

QImage GrabCameraFrame(const QString& device, double exposureMs, int kelvin)
{
    const std::optional<QCameraDevice> found = FindCamera(device);
    if (!found) {
        const QStringList names = CameraNames();
        throw TDravikException(Format(_("ImageCapture: Die Kamera \"%s\" gibt es nicht. Vorhandene Kameras: %s"),
                                      {device, names.isEmpty() ? _("keine") : names.join(QStringLiteral(", "))}));
    }
    QCamera camera(*found);
    if (exposureMs > 0 && camera.isExposureModeSupported(QCamera::ExposureManual)) {
        camera.setExposureMode(QCamera::ExposureManual);
        camera.setManualExposureTime(static_cast<float>(exposureMs / 1000.0));
    }
    if (kelvin > 0 && camera.isWhiteBalanceModeSupported(QCamera::WhiteBalanceManual)) {
        camera.setWhiteBalanceMode(QCamera::WhiteBalanceManual);
        camera.setColorTemperature(kelvin);
    }
    QMediaCaptureSession session;
    QVideoSink sink;
    session.setCamera(&camera);
    session.setVideoSink(&sink);
    QImage frame;
    QEventLoop loop;
    QObject::connect(&sink, &QVideoSink::videoFrameChanged, &loop, [&](const QVideoFrame& f) {
        frame = f.toImage();
        if (!frame.isNull()) loop.quit();
    });
    QObject::connect(&camera, &QCamera::errorOccurred, &loop, [&loop] { loop.quit(); });
    QTimer::singleShot(kFirstFrameTimeoutMs, &loop, &QEventLoop::quit);
    camera.start();
    loop.exec();
    camera.stop();
    if (frame.isNull()) {
        throw TDravikException(Format(_("ImageCapture: Die Kamera \"%s\" liefert kein Bild: %s"),
                                      {found->description(), camera.errorString()}));
    }
    return frame;
}

}  // namespace dv::image
