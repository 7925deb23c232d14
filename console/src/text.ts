// All that the page says, in Chinese and in English.

import { signal } from "@preact/signals";

export type Language = "zh" | "en";

const texts = {
    title: ["系统控制台", "Plant console"],
    project: ["项目", "Project"],
    projects: ["项目", "Projects"],
    openOrMake: ["打开或新建", "Open or make"],
    open: ["打开", "Open"],
    openHint: ["有存档则载入，没有则新建空项目", "Loads the stored project, or makes an empty one"],
    close: ["关闭项目", "Close project"],
    forget: ["从列表移除", "Forget"],
    notOpen: ["未打开", "not open"],
    projectName: ["项目名称（字母与数字）", "Project name (letters and digits)"],
    welcome: ["看看正在运行的系统", "See your plant at work"],
    welcomeText: [
        "打开一个项目，或把项目文档（JSON）拖到这里。",
        "Open a project, or drop a project document (JSON) here.",
    ],
    unlisted: [
        "服务不提供项目列表：这里列出本浏览器打开过的，以及交换日志中出现过的项目。",
        "The service cannot list its projects: here are those that this browser has opened and those seen in the log.",
    ],
    run: ["运行", "Run"],
    pause: ["暂停", "Pause"],
    resume: ["继续", "Resume"],
    step: ["单步", "Step"],
    stop: ["停止", "Stop"],
    running: ["运行中", "Running"],
    paused: ["已暂停", "Paused"],
    stopped: ["已停止", "Stopped"],
    check: ["检查管网", "Check networks"],
    checkHint: ["分析所有管网是否完整", "Analyses whether all networks are complete"],
    send: ["发送文档", "Send document"],
    sendHint: ["用一个文档替换整个项目", "Replaces the whole project by a document"],
    download: ["下载", "Download"],
    downloadTopology: ["拓扑（JSON）", "Topology (JSON)"],
    downloadDrawing: ["图纸（PNG）", "Drawing (PNG)"],
    downloadPicture: ["服务端图片", "The service's picture"],
    more: ["更多", "More"],
    search: ["搜索元件", "Search elements"],
    elements: ["元件", "Elements"],
    networks: ["管网", "Networks"],
    noElements: ["没有找到", "Nothing found"],
    net: ["管网", "Network"],
    branch: ["支路", "Branch"],
    branches: ["支路", "branches"],
    noNets: ["没有管网", "No networks"],
    node: ["节点", "Node"],
    values: ["实时值", "Live values"],
    items: ["参数", "Items"],
    port: ["端口", "Port"],
    item: ["参数", "Item"],
    runValue: ["运行值", "Run"],
    set: ["套库", "Set"],
    model: ["型号", "Model"],
    type: ["类型", "Type"],
    position: ["位置", "Position"],
    connected: ["连接", "Connected to"],
    into: ["来自", "from"],
    outOf: ["去往", "to"],
    edit: ["修改", "Edit"],
    save: ["保存", "Save"],
    cancel: ["取消", "Cancel"],
    editHint: ["点击数值即可修改", "Click a value to change it"],
    cacheToRun: ["套库 → 运行", "Set → run"],
    runToCache: ["运行 → 套库", "Run → set"],
    chart: ["曲线", "Chart"],
    charts: ["曲线", "Charts"],
    chartAdd: ["加入曲线", "Add to chart"],
    chartRemove: ["移出曲线", "Take off the chart"],
    chartEmpty: [
        "点击任一数值旁的曲线图标，或输入变量名。",
        "Use the chart sign beside any value, or type a variable name.",
    ],
    chartVariable: ["变量名", "Variable name"],
    add: ["添加", "Add"],
    log: ["交换日志", "Exchange log"],
    logEmpty: ["还没有交换", "No exchanges yet"],
    logFilter: ["筛选日志", "Filter the log"],
    reads: ["读", "Reads"],
    writes: ["写", "Writes"],
    thisProject: ["仅本项目", "This project only"],
    hold: ["停住", "Hold"],
    legend: ["图例", "Legend"],
    water: ["水", "Water"],
    air: ["空气", "Air"],
    refrigerant: ["制冷剂", "Refrigerant"],
    power: ["电力", "Power"],
    info: ["信号", "Signal"],
    mech: ["机械", "Mechanical"],
    show: ["显示", "Show"],
    TEMP: ["温度", "Temperature"],
    PRE: ["压力", "Pressure"],
    FLOW: ["流量", "Flow"],
    NONE: ["无", "Nothing"],
    zoomForValues: ["放大以显示数值", "Zoom in to see values"],
    layoutTidy: ["自动布局", "Tidy layout"],
    layoutGiven: ["文档位置", "Document positions"],
    fit: ["适合窗口", "Fit"],
    zoomIn: ["放大", "Zoom in"],
    zoomOut: ["缩小", "Zoom out"],
    drawing: [
        "系统图。方向键在相邻元件间移动，加减号缩放，0 适合窗口，Esc 取消选择。",
        "Drawing of the plant. Arrow keys go from element to element, plus and minus zoom, 0 fits, Escape clears.",
    ],
    gone: ["服务没有应答，正在重新连接…", "The service does not answer. Connecting again…"],
    back: ["服务恢复了", "The service is back"],
    waits: ["执行中", "Under way"],
    empty: ["这个项目还是空的", "This project is empty"],
    emptyText: ["把项目文档（JSON）拖到这里。", "Drop a project document (JSON) here."],
    dropHere: ["松开即发送到项目", "Drop to send to project"],
    replaces: ["将替换项目现有的全部内容。", "It replaces all that the project holds."],
    sendTo: ["发送到项目", "Send to project"],
    sent: ["文档已接收", "Document taken"],
    refused: ["服务拒绝", "The service refused"],
    noJson: ["这个文件不是 JSON 对象", "This file is no JSON object"],
    complete: ["所有管网完整", "Networks complete"],
    fault_open: ["支路不完整：此处之后缺少连接", "A branch is incomplete: nothing is linked behind this element"],
    fault_unreached: ["此元件所在支路不完整", "The branch that this element is part of is incomplete"],
    fault_pressure: ["此节点所在管网缺少定压装置", "The network of this node lacks a pressure-holding device"],
    fault_other: ["分析没有通过", "The analysis did not pass"],
    showElement: ["查看元件", "Show the element"],
    dismiss: ["关闭", "Dismiss"],
    language: ["English", "中文"],
    count: ["个元件", "elements"],
    temperature: ["蒸发温度", "Evaporating"],
    COP: ["能效", "COP"],
    energy: ["总能耗", "Energy"],
    steps: ["步数", "Step"],
    tabPlant: ["系统图", "Plant"],
    tabElements: ["元件", "Elements"],
    failed: ["失败", "failed"],
    layingOut: ["正在布局…", "Laying out…"],
    loading: ["正在读取系统…", "Reading the plant…"],
    written: ["已写入", "Written"],
    unnamedValues: ["引擎给出的文本", "The engine's text"],
    less: ["收起", "Less"],
} as const satisfies Record<string, readonly [string, string]>;

export type TextKey = keyof typeof texts;

function startLanguage(): Language {
    const kept = localStorage.getItem("language");
    if (kept === "zh" || kept === "en") return kept;
    return navigator.language.toLowerCase().startsWith("zh") ? "zh" : "en";
}

export const language = signal<Language>(startLanguage());

export function languageSet(next: Language): void {
    language.value = next;
    localStorage.setItem("language", next);
}

/** A text in the language that is set; who renders with it follows the language. */
export function t(key: TextKey): string {
    return texts[key][language.value === "zh" ? 0 : 1];
}
