#pragma once

// A list model whose rows are identified by their place, for lists that change by whole new values: a new value
// updates the rows that differ, and inserts or removes rows between what stayed the same at both ends, so that a
// view keeps its delegates, its scroll position and its selection through the change. A row can also be moved.

#include <QAbstractListModel>
#include <QList>

template<typename Item>
class PositionalListModel : public QAbstractListModel
{
public:
    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : int(m_items.size());
    }
    [[nodiscard]] const QList<Item> &items() const { return m_items; }

protected:
    void setItems(const QList<Item> &items)
    {
        const qsizetype oldCount = m_items.size();
        qsizetype prefix = 0;
        while (prefix < oldCount && prefix < items.size() && m_items.at(prefix) == items.at(prefix))
            ++prefix;
        qsizetype suffix = 0;
        while (suffix < oldCount - prefix && suffix < items.size() - prefix
               && m_items.at(oldCount - 1 - suffix) == items.at(items.size() - 1 - suffix))
            ++suffix;
        const qsizetype oldMiddle = oldCount - prefix - suffix;
        const qsizetype newMiddle = items.size() - prefix - suffix;
        const qsizetype replaced = std::min(oldMiddle, newMiddle);
        for (qsizetype i = prefix; i < prefix + replaced; ++i)
            m_items[i] = items.at(i);
        if (replaced > 0)
            Q_EMIT dataChanged(index(int(prefix)), index(int(prefix + replaced - 1)));
        if (oldMiddle > newMiddle) {
            beginRemoveRows({}, int(prefix + replaced), int(prefix + oldMiddle - 1));
            m_items.remove(prefix + replaced, oldMiddle - newMiddle);
            endRemoveRows();
        } else if (newMiddle > oldMiddle) {
            beginInsertRows({}, int(prefix + replaced), int(prefix + newMiddle - 1));
            m_items.insert(prefix + replaced, newMiddle - oldMiddle, Item());
            for (qsizetype i = prefix + replaced; i < prefix + newMiddle; ++i)
                m_items[i] = items.at(i);
            endInsertRows();
        }
    }

    // The row at `from` goes to `to`, counted in the list as it is now; the view moves its delegate with it.
    void moveItem(qsizetype from, qsizetype to)
    {
        if (from == to || from < 0 || to < 0 || from >= m_items.size() || to >= m_items.size())
            return;
        beginMoveRows({}, int(from), int(from), {}, int(from < to ? to + 1 : to));
        m_items.move(from, to);
        endMoveRows();
    }

    [[nodiscard]] const Item *itemAt(const QModelIndex &index) const
    {
        return checkIndex(index, CheckIndexOption::IndexIsValid) ? &m_items.at(index.row()) : nullptr;
    }

private:
    QList<Item> m_items;
};
