// The table of an element's items: the run value and the three sets of each, all of them to be changed.

import { useSignal } from "@preact/signals";
import type { Info, Item } from "./elementinfo";
import { ChartButton } from "./inspector";
import { unitOf } from "./names";
import { order } from "./project";
import { beat, follows, short, tell, values } from "./state";
import { t } from "./text";

interface CellPlace {
    readonly row: number;
    /** 0 the run value, 1 to 3 the sets. */
    readonly column: number;
}

/** Writes one value. */
async function write(address: string, place: CellPlace, value: string): Promise<boolean> {
    const { row, column } = place;
    const done = column === 0
        ? await order("RunValueSet", address, { Row: row, Value: value })
        : await order("VarCacheSet", address, { Row: row, Column: column, Value: value });
    if (done) tell(t("written"), "good");
    return done;
}

interface CellProps {
    readonly text: string;
    readonly label: string;
    readonly save: (value: string) => Promise<boolean>;
}

function Cell({ text, label, save }: CellProps) {
    const editing = useSignal(false);
    const finish = async (value: string): Promise<void> => {
        if (value.trim() === text || (await save(value.trim()))) editing.value = false;
    };
    if (!editing.value) {
        return (
            <button type="button" class="cell" title={text} aria-label={`${t("edit")} ${label}: ${short(text)}`} onClick={() => (editing.value = true)}>
                {short(text)}
            </button>
        );
    }
    return (
        <input
            class="cell" type="text" inputMode="decimal" defaultValue={text} aria-label={label} maxLength={255}
            ref={(field) => { if (field && document.activeElement !== field) { field.focus(); field.select(); } }}
            onKeyDown={(event) => {
                if (event.key === "Enter") void finish(event.currentTarget.value);
                if (event.key !== "Escape") return;
                event.stopPropagation();
                editing.value = false;
            }}
            onBlur={() => (editing.value = false)}
        />
    );
}

function Sets({ address, changed }: { address: string; changed: () => void }) {
    const set = useSignal(0);
    const copy = async (word: string): Promise<void> => {
        if (!(await order(word, address, String(set.value)))) return;
        tell(t("written"), "good");
        changed();
    };
    return (
        <div class="row copy">
            <select aria-label={t("set")} value={set.value} onChange={(event) => (set.value = Number(event.currentTarget.value))}>
                {[0, 1, 2].map((each) => <option key={each} value={each}>{t("set")} {each}</option>)}
            </select>
            <button type="button" class="action" onClick={() => void copy("CacheToRun")}>{t("cacheToRun")}</button>
            <button type="button" class="action" onClick={() => void copy("RunToCache")}>{t("runToCache")}</button>
        </div>
    );
}

export function ItemTable({ address, info, changed }: { address: string; info: Info; changed: () => void }) {
    follows(beat.value);
    if (info.items.length === 0) return null;
    const cell = (item: Item, column: number, text: string, title: string) => (
        <td>
            <Cell
                text={text} label={`${item.item} ${title}`}
                save={async (value) => {
                    const done = await write(address, { row: item.row, column }, value);
                    if (done) changed();
                    return done;
                }}
            />
        </td>
    );
    const sets = info.items[0]?.sets.length ?? 0;
    return (
        <section>
            <h3>{t("items")}</h3>
            <table class="items">
                <thead>
                    <tr>
                        <th scope="col">{t("item")}</th>
                        <th scope="col">{t("runValue")}</th>
                        {Array.from({ length: sets }, (_, set) => <th key={set} scope="col">{t("set")} {set}</th>)}
                        <th scope="col"><span class="unseen">{t("chart")}</span></th>
                    </tr>
                </thead>
                <tbody>
                    {info.items.map((item) => (
                        <tr key={item.row}>
                            <th scope="row">{item.item} <small>{unitOf(`_${item.item}`)}</small></th>
                            {cell(item, 0, (item.name === null ? undefined : values.get(item.name)) ?? item.run, t("runValue"))}
                            {item.sets.map((text, set) => cell(item, set + 1, text, `${t("set")} ${set}`))}
                            <td>{item.name !== null && <ChartButton name={item.name} />}</td>
                        </tr>
                    ))}
                </tbody>
            </table>
            <p class="hint">{t("editHint")}</p>
            <Sets address={address} changed={changed} />
        </section>
    );
}
