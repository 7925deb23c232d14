// The signs on buttons.

const paths = {
    run: "M7 4.5v15l12-7.500z",
    pause: "M7 5h3.500v14H7zM13.500 5H17v14h-3.500z",
    step: "M5 5v14l9-7zM16 5h3v14h-3z",
    stop: "M6 6h12v12H6z",
} as const;

const strokes = {
    check: "M4 12.500l5 5L20 6.500",
    send: "M12 16V4m0 0L7.500 8.500M12 4l4.500 4.500M4 16v4h16v-4",
    download: "M12 4v12m0 0l-4.500-4.500M12 16l4.500-4.500M4 16v4h16v-4",
    fit: "M4 9V4h5M20 9V4h-5M4 15v5h5M20 15v5h-5",
    plus: "M12 5v14M5 12h14",
    minus: "M5 12h14",
    close: "M6 6l12 12M18 6L6 18",
    chart: "M4 4v16h16M8 14l3.500-4 3 2.500L20 7",
    log: "M5 6h14M5 10h14M5 14h9M5 18h6",
    search: "M10.500 4a6.500 6.500 0 1 1 0 13 6.500 6.500 0 0 1 0-13zM15.500 15.500L20 20",
    warn: "M12 4L2.500 20h19zM12 10v5M12 17.500v.5",
    plant: "M4 8h6v8H4zM14 4h6v6h-6zM14 14h6v6h-6zM10 12h2V7h2M12 12v5h2",
    list: "M4 6h16M4 12h16M4 18h16",
    tidy: "M4 5h5v5H4zM15 5h5v5h-5zM9.500 16h5v5h-5zM9 7.500h6M12 7.500V16",
    down: "M6 9l6 6 6-6",
} as const;

export type IconName = keyof typeof paths | keyof typeof strokes;

export function Icon({ name, size = 18 }: { name: IconName; size?: number }) {
    const filled = name in paths;
    const d = { ...paths, ...strokes }[name];
    return (
        <svg width={size} height={size} viewBox="0 0 24 24" aria-hidden="true" class="icon">
            {filled ? (
                <path d={d} fill="currentColor" stroke="currentColor" stroke-width="1.500" stroke-linejoin="round" />
            ) : (
                <path d={d} fill="none" stroke="currentColor" stroke-width="1.800" stroke-linecap="round" stroke-linejoin="round" />
            )}
        </svg>
    );
}
