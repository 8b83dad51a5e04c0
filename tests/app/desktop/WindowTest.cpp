#include <tbb/global_control.h>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QToolButton>
#include <QWheelEvent>
#include <cmath>
#include <nlohmann/json.hpp>

#include "DesktopSupport.h"
#include "app/desktop/CModifierWatch.h"
#include "app/desktop/CResourceBrowser.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Widgets.h"
#include "host/system/KeyState.h"
#include "host/windowing/CDialog.h"
#include "hostlib/language/Languages.h"
#include "hostlib/parameters/ParameterValues.h"
#include "support/LoadedModule.h"
#include "support/TemporaryLogon.h"

namespace {

// A command in a document, and its dialog.
class Session {
  public:
    Session(const CEffectModule& module, const std::string& effect,
            const CRowIteratorBands& picture)
        : Session(module, effect, CSize{picture.GetWidth(), picture.GetHeight()}) {
        Fill(picture);
    }
    // Without a picture.
    Session(const CEffectModule& module, const std::string& effect, CSize size)
        : document_(new CDocument(size)) {
        context_ = new CExecutionContext(document_, new SmallLibrary, nullptr);
        command_ = module.CreateCommand(effect);
        PrepareCommand(*command_, context_.Get());
    }

    void Fill(const CRowIteratorBands& picture) { document_->SetActiveImage(picture); }
    TolmErrorCode Edit(const WindowToolkit::Script& script,
                       const SDesktopOptions& options = kOptions) {
        bool opened = false;
        const auto run = [&](CDialogWindow& window, IDialogModel& model) {
            opened = true;
            script(window, model);
        };
        const WindowToolkit toolkit(run, options);
        const CErrorAutoThrow end =
            command_->GetResourceData()->Edit(context_.Get(), command_.Get());
        EXPECT_TRUE(opened) << end.Text();
        return end.Code();
    }
    IParameterRepository& Repository() { return *command_->BoundRepository(); }
    // What the effect makes of the document with the values that the command has now.
    CRowIteratorBands Apply() {
        RunCommand(*command_, context_.Get()).ThrowIfFailed();
        return document_->GetActiveImage();
    }

  private:
    TRef<CDocument> document_;
    TRef<CExecutionContext> context_;
    TRef<CCmdEffect> command_;
};

class Window : public testing::Test {
  protected:
    TemporaryLogon logon_;  // no values of earlier runs
    LoadedModule module_;
};

template <class Widget>
Widget* Find(QWidget& window, int id) {
    return window.findChild<Widget*>(QString("control-%1").arg(id));
}

void Press(QWidget& window, const char* button) {
    QTest::mouseClick(window.findChild<QPushButton*>(button), Qt::LeftButton);
}

void TypeInto(CNumberField& field, const QString& text) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text);
}

// Whether the pane at 1:1 shows the picture's own pixels, as far as both reach.
testing::AssertionResult ShowsExactly(const CPreviewPane& pane, const CRowIteratorBands& picture) {
    const QImage shown = pane.Rendered();
    const QPoint corner = pane.PictureRect().topLeft().toPoint();
    const QRect seen =
        QRect(corner, QSize(picture.GetWidth(), picture.GetHeight())).intersected(shown.rect());
    if (seen.width() < 100 || seen.height() < 100) return testing::AssertionFailure() << "not seen";
    const bool deep = picture.GetPixelFormat().Is16bit();
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        for (int x = seen.left(); x <= seen.right(); ++x) {
            const auto sample = [&](int c) {
                const int s = pictures::Sample(picture, x - corner.x(), y - corner.y(), c);
                return deep ? s >> 8 : s;
            };
            if (shown.pixel(x, y) != qRgb(sample(2), sample(1), sample(0))) {
                return testing::AssertionFailure() << "differs at " << x << "," << y;
            }
        }
    }
    return testing::AssertionSuccess();
}

// Everything at once for every effect: a value is typed, a new preview comes, at 1:1 it is the
// result to the last bit, and OK leaves the values with which the command makes that result.
TEST_F(Window, ShowsAndKeepsWhatEveryEffectWillMake) {
    for (const std::string& effect : module_->Names()) {
        SCOPED_TRACE(effect);
        const bool deep = effect.size() % 2 == 0;
        const CRowIteratorBands photo =
            Photo(deep ? ENPixelFormat::Colour16 : ENPixelFormat::Colour8, 450, 420);
        Session session(*module_.operator->(), effect, photo);
        QImage shown;
        std::shared_ptr<const CPyramid> preview;
        const TolmErrorCode end = session.Edit([&](CDialogWindow& window, IDialogModel& model) {
            ASSERT_TRUE(WaitUntilDone(window));
            const int id = model.Template().ControlsOf(EControlKind::Number).front();
            const SControlState before = model.Control(id);
            const int value = before.value > before.minimum ? before.value - 1 : before.value + 1;
            const int requests = window.Engine().Counters().requested;
            QWidget* line = window.findChild<QWidget*>(QString("control-%1").arg(id));
            ASSERT_TRUE(line);
            auto* field = dynamic_cast<CNumberField*>(line);
            ASSERT_TRUE(field);
            field->selectAll();
            TypeInto(*field, QString::number(value));
            EXPECT_EQ(model.Control(id).value, value);
            EXPECT_GT(window.Engine().Counters().requested, requests);
            ASSERT_TRUE(WaitUntilDone(window));
            QCoreApplication::processEvents();
            ASSERT_EQ(window.Engine().Shown().error, "");
            ASSERT_TRUE(window.Engine().Shown().exact);
            EXPECT_EQ(window.Engine().Shown().request, window.Engine().Counters().requested);
            preview = window.Engine().Shown().picture;
            Press(window, "one-to-one");
            EXPECT_TRUE(ShowsExactly(window.Pane(), preview->Level(0)));
            Press(window, "ok");
        });
        ASSERT_EQ(end, TolmErrorCode::Success);
        ASSERT_TRUE(preview);
        EXPECT_EQ(pictures::Difference(preview->Level(0), session.Apply()), "");
    }
}

// A window that was opened while its picture was still being read.
TEST_F(Window, APictureThatComesLaterIsShown) {
    const CRowIteratorBands photo = Photo(ENPixelFormat::Colour16, 450, 420);
    Session session(*module_.operator->(), "Sandstone", {450, 420});
    bool came = false;
    SDesktopOptions options = kOptions;
    options.size = {450, 420};
    options.depth = 16;
    options.picture_came = [&] { return came; };
    std::shared_ptr<const CPyramid> preview;
    const auto script = [&](CDialogWindow& window, IDialogModel& model) {
        const auto* status = window.findChild<QLabel*>("status");
        EXPECT_EQ(status->text(), Text(EText::Loading));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.Engine().IsBusy(); }));
        model.Type(2704, L"77");
        QTest::qWait(120);
        EXPECT_EQ(status->text(), Text(EText::Loading));
        EXPECT_EQ(window.Pane().PictureRect().width() / 450, window.Pane().Scale());
        session.Fill(photo);
        came = true;
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.Engine().Shown().exact; }, 60000));
        QCoreApplication::processEvents();
        EXPECT_EQ(status->text(), Text(EText::Exact));
        preview = window.Engine().Shown().picture;
        Press(window, "ok");
    };
    ASSERT_EQ(session.Edit(script, options), TolmErrorCode::Success);
    ASSERT_TRUE(preview);
    EXPECT_EQ(pictures::Difference(preview->Level(0), session.Apply()), "");
}

TEST_F(Window, APictureThatDoesNotComeCancels) {
    Session session(*module_.operator->(), "Sandstone", {450, 420});
    SDesktopOptions options = kOptions;
    options.picture_came = [] { return true; };
    const auto script = [](CDialogWindow& window, IDialogModel&) {
        QTest::qWait(200);
        Press(window, "ok");  // too late
    };
    EXPECT_EQ(session.Edit(script, options), TolmErrorCode::Cancelled);
}

TEST_F(Window, DraggingTheDialStartsNothingStale) {
    Session session(*module_.operator->(), "Sandstone", Photo(ENPixelFormat::Colour8, 1200, 900));
    const TolmErrorCode end = session.Edit([](CDialogWindow& window, IDialogModel& model) {
        auto* dial = Find<CAngleDial>(window, 2706);
        ASSERT_TRUE(dial);
        const QPointF middle(dial->width() / 2.0, dial->height() / 2.0);
        const auto at = [&](int degrees) {
            const double angle = (90 - degrees) * M_PI / 180;  // clockwise from the top
            return (middle + QPointF(std::cos(angle), -std::sin(angle)) * 20).toPoint();
        };
        QTest::mousePress(dial, Qt::LeftButton, {}, at(0));
        for (int degrees = 10; degrees <= 300; degrees += 5) {
            QMouseEvent move(QEvent::MouseMove, at(degrees), dial->mapToGlobal(at(degrees)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(dial, &move);
            QTest::qWait(2);
        }
        QTest::mouseRelease(dial, Qt::LeftButton, {}, at(300));
        EXPECT_NEAR(model.Control(2704).value, 300, 3) << "the field beside the dial follows";
        ASSERT_TRUE(WaitUntilDone(window));
        const CPreviewEngine::SCounters counters = window.Engine().Counters();
        EXPECT_GT(counters.requested, 50);
        EXPECT_EQ(counters.started_stale, 0);
        EXPECT_LE(counters.started, counters.requested);
        EXPECT_GE(counters.finished, 1);
        EXPECT_EQ(window.Engine().Shown().request, counters.requested);
    });
    EXPECT_EQ(end, TolmErrorCode::Cancelled);
}

TEST_F(Window, ClosingInTheMiddleLeavesNoThread) {
    Session session(*module_.operator->(), "RoughLeather",
                    Photo(ENPixelFormat::Colour8, 3000, 2000));
    // Workers that a preview starts bear its name, and stay: let there be none.
    const tbb::global_control alone(tbb::global_control::max_allowed_parallelism, 1);
    const int before = PreviewThreads();
    const TolmErrorCode end = session.Edit([&](CDialogWindow& window, IDialogModel&) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return PreviewThreads() == before + 1; }));
        EXPECT_TRUE(window.Engine().IsBusy());
        window.close();
    });
    EXPECT_EQ(end, TolmErrorCode::Cancelled);
    EXPECT_EQ(PreviewThreads(), before);
}

TEST_F(Window, ModifierKeysReachTheKeyState) {
    Session session(*module_.operator->(), "Tiles", Photo(ENPixelFormat::Colour8, 60, 40));
    const CModifierWatch watch(*qApp);
    session.Edit([](CDialogWindow& window, IDialogModel&) {
        const struct {
            Qt::Key key;
            Qt::KeyboardModifier modifier;
            int state;
        } keys[] = {{Qt::Key_Shift, Qt::ShiftModifier, VK_SHIFT},
                    {Qt::Key_Control, Qt::ControlModifier, VK_CONTROL},
                    {Qt::Key_Alt, Qt::AltModifier, VK_MENU}};
        for (const auto& [key, modifier, state] : keys) {
            QTest::keyPress(window.windowHandle(), key, modifier);
            for (const auto& other : keys) {
                EXPECT_EQ(GetKeyState(other.state) < 0, other.state == state) << state;
            }
            QTest::keyRelease(window.windowHandle(), key, Qt::NoModifier);
            EXPECT_EQ(GetKeyState(state), 0);
        }
    });
}

// The wheel over a control that has not the focus scrolls the panel: it takes no focus and changes
// nothing.
TEST_F(Window, TheWheelChangesWhatHasTheFocusOnly) {
    Session session(*module_.operator->(), "Tiles", Photo(ENPixelFormat::Colour8, 60, 40));
    session.Edit([](CDialogWindow& window, IDialogModel&) {
        const auto turn = [](QWidget* over) {
            const QPointF at = over->rect().center();
            QWheelEvent event(at, over->mapToGlobal(at), {}, {0, 120}, Qt::NoButton, {},
                              Qt::NoScrollPhase, false);
            QSpontaneKeyEvent::setSpontaneous(&event);
            qApp->notify(over, &event);
        };
        const auto values = [&] {
            QStringList all;
            for (auto* field : window.findChildren<CNumberField*>()) all << field->text();
            for (auto* dial : window.findChildren<CAngleDial*>()) {
                all << QString::number(dial->value());
            }
            for (auto* list : window.findChildren<QComboBox*>()) all << list->currentText();
            return all;
        };
        auto* fields = window.findChild<QScrollArea*>();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        window.Pane().setFocus();
        const QStringList before = values();
        int turned = 0;
        for (auto* control : fields->findChildren<QWidget*>()) {
            const bool number = qobject_cast<QAbstractSpinBox*>(control) ||
                                qobject_cast<QAbstractSlider*>(control) ||
                                qobject_cast<QComboBox*>(control);
            if (!number || control->parent() == fields) continue;
            turn(control);
            ++turned;
            EXPECT_EQ(values(), before) << control->objectName().toStdString();
            EXPECT_FALSE(control->hasFocus());
        }
        EXPECT_GT(turned, 20);
        auto* field = Find<CNumberField>(window, 2955);
        field->setFocus();
        ASSERT_TRUE(field->hasFocus());
        turn(field);
        EXPECT_NE(values(), before);
    });
}

TEST_F(Window, EscapeStopsThePreviewBeforeTheDialog) {
    Session session(*module_.operator->(), "RoughLeather",
                    Photo(ENPixelFormat::Colour8, 3000, 2000));
    bool still_open = false;
    const TolmErrorCode end = session.Edit([&](CDialogWindow& window, IDialogModel&) {
        ASSERT_TRUE(window.Engine().IsBusy());
        QTest::keyClick(&window, Qt::Key_Escape);
        ASSERT_TRUE(WaitUntilDone(window));
        still_open = window.isVisible();
        EXPECT_EQ(window.Engine().Counters().finished, 0);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    EXPECT_TRUE(still_open);
    EXPECT_EQ(end, TolmErrorCode::Cancelled);
}

TEST_F(Window, WrongNumbersAreShownAndNotStored) {
    Session session(*module_.operator->(), "Sandstone", Photo(ENPixelFormat::Colour8, 200, 200));
    const TolmErrorCode end = session.Edit([](CDialogWindow& window, IDialogModel& model) {
        auto* field = Find<CNumberField>(window, 2704);
        ASSERT_TRUE(field);
        const int before = model.Control(2704).value;
        for (const char* text : {"999", "x", "-1", ""}) {
            field->selectAll();
            text[0] ? TypeInto(*field, text) : QTest::keyClick(field, Qt::Key_Backspace);
            EXPECT_TRUE(field->IsWrong()) << text;
            EXPECT_FALSE(field->accessibleDescription().isEmpty());
        }
        Press(window, "ok");
        EXPECT_TRUE(window.isVisible()) << "OK goes to the field instead";
        EXPECT_NE(model.Control(2704).value, 999);
        TypeInto(*field, QString::number(before));
        EXPECT_FALSE(field->IsWrong());
        auto* slider = window.findChild<QSlider*>("slider-2704");
        EXPECT_NEAR(slider->value(), before * 1000 / 359.0, 1) << "the handle stands at the number";
        slider->setSliderDown(true);
        for (const int at : {200, 500}) slider->setValue(at);
        slider->setSliderDown(false);
        EXPECT_NEAR(field->text().toInt(), 500 * 359 / 1000.0, 1);
        EXPECT_NEAR(slider->value(), 500, 2);
    });
    EXPECT_EQ(end, TolmErrorCode::Cancelled);
}

TEST_F(Window, ViewStaysWhenParametersChangeAndZoomsAboutThePointer) {
    Session session(*module_.operator->(), "Sandstone", Photo(ENPixelFormat::Colour8, 900, 700));
    session.Edit([](CDialogWindow& window, IDialogModel& model) {
        CPreviewPane& pane = window.Pane();
        const QPointF pointer(pane.width() * 0.3, pane.height() * 0.6);
        pane.ScaleTo(2);
        const auto under = [&] { return (pointer - pane.PictureRect().topLeft()) / pane.Scale(); };
        const QPointF before = under();
        QWheelEvent wheel(pointer, pane.mapToGlobal(pointer), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&pane, &wheel);
        EXPECT_DOUBLE_EQ(pane.Scale(), 2.5);
        EXPECT_NEAR(under().x(), before.x(), 0.5);
        EXPECT_NEAR(under().y(), before.y(), 0.5);
        const QRectF place = pane.PictureRect();
        model.Type(2704, L"77");
        ASSERT_TRUE(WaitUntilDone(window));
        QCoreApplication::processEvents();
        EXPECT_EQ(pane.PictureRect(), place);
        for (const auto& [asked, got] : {std::pair(0.001, 0.05), std::pair(99.0, 16.0)}) {
            pane.ScaleTo(asked);
            EXPECT_DOUBLE_EQ(pane.Scale(), got);
        }
        Press(window, "fit");
        EXPECT_TRUE(pane.IsFitted());
    });
}

TEST_F(Window, SplitAndHoldShowTheOriginal) {
    const CRowIteratorBands photo = Photo(ENPixelFormat::Colour8, 450, 420);
    Session session(*module_.operator->(), "Sandstone", photo);
    session.Edit([&](CDialogWindow& window, IDialogModel&) {
        ASSERT_TRUE(WaitUntilDone(window));
        QCoreApplication::processEvents();
        CPreviewPane& pane = window.Pane();
        Press(window, "one-to-one");
        EXPECT_FALSE(ShowsExactly(pane, photo));
        QTest::keyPress(&window, Qt::Key_O);
        EXPECT_TRUE(ShowsExactly(pane, photo));
        QTest::keyRelease(&window, Qt::Key_O);
        EXPECT_FALSE(ShowsExactly(pane, photo));

        Press(window, "split");
        const QPoint on_line(pane.width() / 2, pane.height() / 2);
        QTest::mousePress(&pane, Qt::LeftButton, {}, on_line);
        QTest::mouseMove(&pane, {pane.width() / 4, 10});
        QTest::mouseRelease(&pane, Qt::LeftButton, {}, {pane.width() / 4, 10});
        EXPECT_NEAR(pane.SplitPosition(), 0.25, 0.01);
        const QImage grabbed = pane.grab().toImage();
        const QRectF place = pane.PictureRect();
        const auto original = [&](int x) {
            const int y = grabbed.height() / 2;
            const auto sample = [&](int c) {
                return pictures::Sample(photo, x - static_cast<int>(place.left()),
                                        y - static_cast<int>(place.top()), c);
            };
            return grabbed.pixel(x, y) == qRgb(sample(2), sample(1), sample(0));
        };
        int left = 0, right = 0;
        const int line = pane.width() / 4;
        const int first = std::max(static_cast<int>(place.left()), 0);
        const int last = std::min(static_cast<int>(place.right()), pane.width());
        for (int x = first + 5; x < line - 5; ++x) left += !original(x);
        for (int x = line + 5; x < last - 5; ++x) right += !original(x);
        EXPECT_EQ(left, 0);
        EXPECT_GT(right, 50);
    });
}

TEST_F(Window, PipetteTakesTheOriginalsColourIntoItsSwatch) {
    const CRowIteratorBands photo = Photo(ENPixelFormat::Colour8, 300, 300);
    Session session(*module_.operator->(), "RoughLeather", photo);
    session.Edit([&](CDialogWindow& window, IDialogModel& model) {
        ASSERT_TRUE(WaitUntilDone(window));
        QCoreApplication::processEvents();
        window.Pane().ScaleTo(1);
        const QPoint corner = window.Pane().PictureRect().topLeft().toPoint();
        for (const int swatch : {2458, 2459}) {
            auto* picker = window.findChild<QToolButton*>(QString("picker-%1").arg(swatch));
            ASSERT_TRUE(picker && picker->isEnabled());
            picker->click();
            const int other = swatch == 2458 ? 2459 : 2458;
            const COLORREF kept = model.Control(other).colour;
            const QPoint pixel(swatch - 2400, 33);
            QTest::mouseClick(&window.Pane(), Qt::LeftButton, {}, corner + pixel);
            const auto sample = [&](int c) {
                return pictures::Sample(photo, pixel.x(), pixel.y(), c);
            };
            EXPECT_EQ(model.Control(swatch).colour,
                      CColorRef::FromRgb(sample(2), sample(1), sample(0)).value);
            EXPECT_EQ(model.Control(other).colour, kept);
            EXPECT_FALSE(picker->isChecked());
        }
    });
}

TEST_F(Window, ButtonsChangeAllParametersAndTakeThatBack) {
    Session session(*module_.operator->(), "Tiles", Photo(ENPixelFormat::Colour8, 200, 200));
    session.Edit([&](CDialogWindow& window, IDialogModel& model) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        const auto values = [&] { return parameters::ToJson(session.Repository()).dump(); };
        auto* undo = window.findChild<QPushButton*>("undo");
        const std::string defaults = values();
        EXPECT_FALSE(undo->isEnabled());
        Press(window, "randomise");
        EXPECT_NE(values(), defaults);
        EXPECT_TRUE(undo->isEnabled());
        EXPECT_EQ(Find<QAbstractSpinBox>(window, 2961)->text().toInt(), model.Control(2961).value);
        QTest::keyClick(Find<CNumberField>(window, 2961), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(values(), defaults);
        model.Type(2955, L"20");
        QTest::mouseClick(window.findChild<QToolButton*>("reset-2955"), Qt::LeftButton);
        EXPECT_EQ(values(), defaults);
        model.Type(2955, L"21");
        window.findChild<QSlider*>("slider-2961")->setValue(0);
        EXPECT_EQ(model.Control(2961).value, 0);
        Press(window, "copy");
        const QString line = QApplication::clipboard()->text();
        EXPECT_TRUE(line.startsWith("cmdtexture apply Tiles 'in put.png' -o ")) << qPrintable(line);
        EXPECT_TRUE(line.contains("TileSize=21")) << qPrintable(line);
        Press(window, "reset-all");
        EXPECT_EQ(values(), defaults);
    });
}

TEST_F(Window, LibraryIsBrowsedAndCancelledBack) {
    Session session(*module_.operator->(), "Sculpture", Photo(ENPixelFormat::Colour8, 200, 200));
    session.Edit([](CDialogWindow& window, IDialogModel& model) {
        const int before = model.Control(3489).selected;
        for (const bool accept : {false, true}) {
            CResourceBrowser browser(model, 3489, "Choose", &window);
            auto* list = browser.findChild<QListWidget*>();
            ASSERT_EQ(list->count(), 3);
            const auto pictured = [&] {
                return list->item(2)->icon().pixmap(96).toImage().pixelColor(48, 48).alpha() == 255;
            };
            EXPECT_FALSE(pictured());
            EXPECT_TRUE(QTest::qWaitFor(pictured, 5000));
            list->setCurrentRow(2);
            EXPECT_EQ(model.Control(3489).selected, 2);
            accept ? browser.accept() : browser.reject();
            EXPECT_EQ(model.Control(3489).selected, accept ? 2 : before);
            auto* category = browser.findChild<QComboBox*>("category");
            ASSERT_EQ(category->count(), 3);
            emit category->activated(2);
            EXPECT_EQ(list->count(), 1);
            browser.reject();
            EXPECT_EQ(model.Control(3489).entries.size(), 3U);
        }
    });
}

// Whether all of a text is seen, in every window and language.
TEST_F(Window, NothingIsCutOff) {
    for (const std::string& language : languages::Available(FindInstallation().data)) {
        const LoadedModule module(language);
        for (const std::string& effect : module->Names()) {
            SCOPED_TRACE(language + " " + effect);
            Session session(*module.operator->(), effect, Photo(ENPixelFormat::Colour8, 64, 64));
            session.Edit([](CDialogWindow& window, IDialogModel&) {
                QTest::qWait(1);
                const auto* panel = window.findChild<QScrollArea*>();
                ASSERT_TRUE(panel);
                EXPECT_LE(panel->widget()->width(), panel->viewport()->width());
                for (QWidget* widget : window.findChildren<QWidget*>()) {
                    const bool has_text = qobject_cast<QAbstractButton*>(widget) ||
                                          qobject_cast<QLabel*>(widget) ||
                                          qobject_cast<QAbstractSpinBox*>(widget);
                    if (!has_text || !widget->isVisible()) continue;
                    const bool fixed = widget->minimumWidth() == widget->maximumWidth();
                    const int needed = fixed ? widget->fontMetrics().horizontalAdvance("+") + 10
                                             : widget->minimumSizeHint().width();
                    EXPECT_GE(widget->width(), needed)
                        << qPrintable(widget->objectName()) << qPrintable(widget->accessibleName());
                    EXPECT_GE(widget->height(), widget->minimumSizeHint().height())
                        << qPrintable(widget->objectName());
                    const bool focusable = widget->focusPolicy() & Qt::TabFocus;
                    const auto* button = qobject_cast<QAbstractButton*>(widget);
                    EXPECT_TRUE(!focusable || !widget->accessibleName().isEmpty() ||
                                (button && !button->text().isEmpty()))
                        << widget->metaObject()->className() << " has no name";
                }
            });
        }
    }
}

}  // namespace
