// What the page tells for some seconds.

import { Icon } from "./icons";
import { notices } from "./state";
import { t } from "./text";

export function Notices() {
    return (
        <div class="notices" role="status" aria-live="polite">
            {notices.value.map((notice) => (
                <div key={notice.key} class={`notice ${notice.kind}`}>
                    <span>{notice.text}</span>
                    <button
                        type="button" class="tool small" aria-label={t("dismiss")}
                        onClick={() => (notices.value = notices.value.filter((each) => each !== notice))}
                    >
                        <Icon name="close" size={14} />
                    </button>
                </div>
            ))}
        </div>
    );
}
