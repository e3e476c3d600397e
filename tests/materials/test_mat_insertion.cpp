// Putting list materials into the estimate (titles passed over, duplicates found, positions written),
// attaching a list material to a rate with each refusal, recalculating the estimate materials'
// prices, and the insertion as one undoable step of the estimate editor.

#include "MatTestData.h"
#include "MoneyText.h"
#include "SqlRows.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "materials/MatInsertion.h"
#include "materials/MatRecalc.h"

namespace {

QStringList materialRows(QSqlDatabase smeta) {
    return queryRows(smeta,
                     "SELECT numpos, namemat, edizm, kolvo, price, summa, note FROM materials ORDER BY _id");
}

TEST(MatInsertion, TitlesArePassedOverAndNamesTheEstimateHasAreNotAddedTwice) {
    PriceFixture f;
    MaterialsStore::Material existing;
    existing.name = "Клей плиточный";
    existing.quantity = "4";
    ASSERT_FALSE(MaterialsStore::add(f.smeta(), existing).isEmpty()); // from a rate: no position yet
    MatRow primer = matRow("Грунтовка, 10 л", "шт.", "950", "арт. 77");
    primer.quantity = "2";
    MatRow grout = matRow("Затирка", "кг", "договорная");
    grout.quantity = " 3 ";
    const std::vector<MatRow> rows = {matRow("Смеси"),
                                      matRow("Клеи", "пв"),
                                      matRow("", "шт.", "5"),
                                      matRow("Клей плиточный", "мешок", "520"),
                                      primer,
                                      grout,
                                      matRow("Грунтовка, 10 л", "шт.", "990")};
    const std::vector<MatPickOutcome> out = MatInsertion::pickAll(f.smeta(), rows);
    const std::vector<MatPickOutcome::Kind> kinds = {
        MatPickOutcome::Skipped, MatPickOutcome::Skipped, MatPickOutcome::Skipped,  MatPickOutcome::Duplicate,
        MatPickOutcome::Added,   MatPickOutcome::Added,   MatPickOutcome::Duplicate};
    ASSERT_EQ(out.size(), kinds.size());
    for (size_t i = 0; i < kinds.size(); ++i)
        EXPECT_EQ(out[i].kind, kinds[i]) << i << " " << out[i].error.toStdString();
    EXPECT_EQ(out[3].material.quantity, "4"); // the row already there, for the quantity dialog
    EXPECT_EQ(out[6].material.name, "Грунтовка, 10 л");
    // Positions follow the table; a typed quantity comes with its amount (none for a price in words).
    EXPECT_EQ(materialRows(f.smeta()),
              (QStringList{"1|Клей плиточный||4|||", "2|Грунтовка, 10 л|шт.|2|950|1900,00|арт. 77",
                           "3|Затирка|кг|3|договорная||"}));
    // One more later gets the next position.
    EXPECT_EQ(MatInsertion::pick(f.smeta(), matRow("Шпаклёвка", "мешок", "590")).kind, MatPickOutcome::Added);
    EXPECT_EQ(queryRows(f.smeta(), "SELECT numpos FROM materials WHERE namemat='Шпаклёвка'"),
              QStringList{"4"});
}

TEST(MatInsertion, AttachingToARateIsRefusedForEachWrongChoice) {
    PriceFixture f;
    const RateRow section = rate("1", "Отделка стен", "", "");
    const RateRow subsection = rate("1-1", "Штукатурные работы", "ПВ", "", "2");
    const RateRow work = rate("1-1-1", "Штукатурка стен", "м2", "450", "3");
    const RateRow unsaved = rate("1-1-2", "Новая расценка", "м2", "100");
    const RateRow empty;
    const MatRow glue = matRow("Клей плиточный", "мешок", "520");
    struct Case {
        const char *what;
        bool showsRates;
        const RateRow *rate;
        MatRow material;
        QString refusal;
    };
    const std::vector<Case> cases = {
        {"materials tab", false, &work, glue, "Откройте вкладку \"Расценки\""},
        {"subsection", true, &subsection, glue, "Выбран подвид работ"},
        {"section", true, &section, glue, "Выбран вид работ"},
        {"empty row", true, &empty, glue, "Пустая расценка"},
        {"no row", true, nullptr, glue, "Пустая расценка"},
        {"rate without rec", true, &unsaved, glue, "Пустая расценка"},
        {"title of the list", true, &work, matRow("Клеи", "пв"),
         "Выберите в списке материал, а не заголовок или пустую строку"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(MatInsertion::attachToRate(f.price(), "resurs1", c.showsRates, c.rate, c.material, "rub"),
                  c.refusal)
            << c.what;
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM resurs1"), "0"); // nothing written by a refusal
    EXPECT_EQ(MatInsertion::attachToRate(f.price(), "resurs2", true, &work, glue, "dol"), QString());
    EXPECT_EQ(queryRows(f.price(), "SELECT name, edizm, cena, ras, val FROM resurs2"),
              QStringList{"Клей плиточный|мешок|520|3|dol"});
    EXPECT_FALSE(MatInsertion::attachToRate(f.price(), "price1", true, &work, glue, "rub").isEmpty());
}

class MatEditor : public ::testing::Test {
protected:
    void SetUp() override {
        doc.attach(f.module.get(), nullptr, nullptr);
        ASSERT_TRUE(doc.newDocument());
    }
    void material(const QString &name, const QString &qty, const QString &price) {
        EstimateMaterials &m = *doc.editor().materials();
        const int row = m.addRow();
        ASSERT_GE(row, 0);
        ASSERT_TRUE(m.setData(m.index(row, MatCol::Name), name, Qt::EditRole));
        ASSERT_TRUE(m.setData(m.index(row, MatCol::Qty), qty, Qt::EditRole));
        ASSERT_TRUE(m.setData(m.index(row, MatCol::Price), price, Qt::EditRole));
    }
    QStringList priced() {
        return queryRows(f.smeta(), "SELECT namemat, price, summa FROM materials ORDER BY _id");
    }
    PriceFixture f;
    EstimateDocument doc;
};

TEST_F(MatEditor, PricesComeFromTheListOrChangeByAPercentage) {
    material("Клей плиточный", "2", "500");
    material("Грунтовка", "1", "950");
    material("Лента", "3", "бесплатно");
    material("Нет в списке", "1", "10");
    const std::vector<MatRow> list = {matRow("Клеи", "пв"), matRow("Клей плиточный", "мешок", "520"),
                                      matRow("Грунтовка", "шт.", "1 000"),
                                      matRow("Клей плиточный", "мешок", "1")};
    MatRecalc::Outcome out = MatRecalc::fromList(*doc.editor().materials(), list);
    EXPECT_EQ(out.changed, 2);
    EXPECT_EQ(out.unmatched, 2);
    EXPECT_EQ(priced(), (QStringList{"Клей плиточный|520|1040,00", "Грунтовка|1 000|1000,00",
                                     "Лента|бесплатно|", "Нет в списке|10|10,00"}));
    EXPECT_EQ(rub(doc.editor().materialsRaw()), "2050,00");
    out = MatRecalc::byPercent(*doc.editor().materials(), *Decimal::of(-55, 1)); // -5,5 %
    EXPECT_EQ(out.changed, 3);
    EXPECT_EQ(out.skipped, QStringList{"Лента"});
    EXPECT_EQ(priced(), (QStringList{"Клей плиточный|491,40|982,80", "Грунтовка|945,00|945,00",
                                     "Лента|бесплатно|", "Нет в списке|9,45|9,45"}));
}

TEST_F(MatEditor, AnInsertionIsOneStepThatUndoAndRedoTakeWhole) {
    material("Уже была", "1", "100");
    const QStringList before = materialRows(f.smeta());
    EstimateEditor &editor = doc.editor();
    doc.setChanged(false);
    {
        EstimateEditor::Scope step(editor, "Вставка материала");
        MatInsertion::pickAll(f.smeta(), {matRow("Клей", "мешок", "520"), matRow("Грунтовка", "шт.", "950")});
    }
    editor.materialsChanged();
    const QStringList after = materialRows(f.smeta());
    EXPECT_EQ(after.size(), 3);
    EXPECT_TRUE(doc.isChanged());
    EXPECT_EQ(editor.undoTitle(), "Вставка материала");
    EXPECT_EQ(rub(editor.materialsRaw()), "100,00");
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(materialRows(f.smeta()), before);
    EXPECT_EQ(editor.materials()->rowCount(), 1);
    ASSERT_TRUE(editor.redo());
    EXPECT_EQ(materialRows(f.smeta()), after);
    EXPECT_EQ(editor.materials()->rowCount(), 3);
    // A quantity changed in the "Найдено совпадение" dialog is a step of its own.
    EstimateMaterials &m = *editor.materials();
    {
        EstimateEditor::Scope step(editor, "Изменение количества материала");
        ASSERT_TRUE(m.setData(m.index(1, MatCol::Qty), "4", Qt::EditRole));
    }
    EXPECT_EQ(rub(editor.materialsRaw()), "2180,00");
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(materialRows(f.smeta()), after);
    EXPECT_EQ(rub(editor.materialsRaw()), "100,00");
}

} // namespace
