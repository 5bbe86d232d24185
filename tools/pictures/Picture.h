#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonCore/Presentation/SettingsModel.h"

#include <QImage>
#include <QString>

#include <functional>
#include <vector>

namespace quellon {

/// One picture of the program.
struct Picture {
    QString name;                 ///< Of the file, without what it looks like and its ending.
    std::function<QImage()> draw; ///< In the application's present look.
    bool isGolden = false;        ///< Kept beside the tests and compared with.
};

/// Every picture there is, each name once.
[[nodiscard]] std::vector<Picture> pictures();

/// "panel-guarding-dark-2x": the name of a picture's file.
[[nodiscard]] QString fileName(const Picture& picture, bool dark, double scale);

/// The pictures of the documents: light and dark side by side.
[[nodiscard]] std::vector<Picture> readmePictures();

/// The panel's window with this model.
[[nodiscard]] QImage panelPicture(const MenuPanelModel& model);
/// The settings window with this model.
[[nodiscard]] QImage settingsPicture(const SettingsModel& model);

// Where they come from.
[[nodiscard]] std::vector<Picture> panelPictures();
[[nodiscard]] std::vector<Picture> settingsPictures();
[[nodiscard]] std::vector<Picture> debugPictures();
[[nodiscard]] std::vector<Picture> toastPictures();
[[nodiscard]] std::vector<Picture> trayPictures();
[[nodiscard]] std::vector<Picture> symbolPictures();

} // namespace quellon
