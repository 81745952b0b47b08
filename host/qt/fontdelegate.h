// SPDX-License-Identifier: MIT
// Rows that are names of fonts, each in the face that it names.
#pragma once

#include "host/fonts/fontsource.h"
#include "host/qt/rowmodel.h"
#include "preview/qt/faces.h"

#include <map>
#include <string>

class QAbstractItemView;

namespace host {

/// What it takes to show faces.
struct FaceServices {
    preview::Faces& faces;
    const FontSource& source;
};

/// [main-thread] Only what is painted is asked for, and what has scrolled away is no longer waited
/// for. Until its face has come, and where the face has no letters for it, a name is plain; signs
/// that the face does have are then beside it.
class FontDelegate : public RowDelegate {
public:
    /// All of them outlive it.
    FontDelegate(Dialogs& dialogs, RowModel& model, QAbstractItemView& view, FaceServices services);
    ~FontDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    struct Look {
        preview::Faces::Id asked = 0;  ///< 0: it stays as it is
        preview::SharedAnswer picture; ///< nullptr: the plain name alone
        bool ofName = true;            ///< else of signs
    };

    const Look& lookOf(const std::string& name, unsigned pixels, double scale) const;
    void forget() const;
    void dropHidden();
    void askForName(const std::string& name, const FaceFile& face) const;
    void askForSigns(const std::string& name, const FaceFile& face) const;
    preview::FaceLine line(const FaceFile& face, const std::string& text) const;

    RowModel& model_;
    QAbstractItemView& view_;
    FaceServices services_;
    mutable std::map<std::string, Look> looks_; ///< by name
    mutable unsigned pixels_ = 0;               ///< of the looks
    mutable double scale_ = 0;
};

/// The em's height of faces in windows where texts are in `font`.
[[nodiscard]] unsigned facePixels(const QFont& font);

} // namespace host
