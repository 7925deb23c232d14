// The sign of each kind of device, drawn in a square of 40 around the origin with the flow to the right.

import type { SymbolName } from "./catalogue";

type Draw = (pen: Pen) => void;

/** A canvas path in few words. */
class Pen {
    constructor(readonly canvas: CanvasRenderingContext2D) {}
    line(...points: number[]): this {
        this.canvas.beginPath();
        for (let at = 0; at + 1 < points.length; at += 2) this.canvas.lineTo(points[at] ?? 0, points[at + 1] ?? 0);
        this.canvas.stroke();
        return this;
    }
    shape(...points: number[]): this {
        this.canvas.beginPath();
        for (let at = 0; at + 1 < points.length; at += 2) this.canvas.lineTo(points[at] ?? 0, points[at + 1] ?? 0);
        this.canvas.closePath();
        return this.both();
    }
    circle(x: number, y: number, radius: number): this {
        this.canvas.beginPath();
        this.canvas.arc(x, y, radius, 0, 2 * Math.PI);
        return this.both();
    }
    round(x: number, y: number, w: number, h: number, radius: number): this {
        this.canvas.beginPath();
        this.canvas.roundRect(x, y, w, h, radius);
        return this.both();
    }
    wave(y: number, width: number): this {
        this.canvas.beginPath();
        this.canvas.moveTo(-width, y);
        this.canvas.bezierCurveTo(-width / 3, y - 5, width / 3, y + 5, width, y);
        this.canvas.stroke();
        return this;
    }
    /** Filled with the lighter colour and bordered. */
    private both(): this {
        this.canvas.fill();
        this.canvas.stroke();
        return this;
    }
}

function fanBlades(pen: Pen, x: number, y: number, radius: number): void {
    for (let blade = 0; blade < 3; ++blade) {
        const angle = (blade * 2 * Math.PI) / 3 - Math.PI / 2;
        pen.canvas.beginPath();
        pen.canvas.ellipse(
            x + (Math.cos(angle) * radius) / 2, y + (Math.sin(angle) * radius) / 2, radius / 2, radius / 4.5, angle, 0,
            2 * Math.PI,
        );
        pen.canvas.stroke();
    }
}

function flake(pen: Pen, x: number, y: number, radius: number): void {
    for (let arm = 0; arm < 3; ++arm) {
        const angle = (arm * Math.PI) / 3 + Math.PI / 6;
        const dx = Math.cos(angle) * radius;
        const dy = Math.sin(angle) * radius;
        pen.line(x - dx, y - dy, x + dx, y + dy);
    }
}

const house: readonly number[] = [-17, 16, -17, -3, 0, -17, 17, -3, 17, 16];
const zigzag: readonly number[] = [-18, 0, -8, 0, -4, -9, 4, 9, 8, 0, 18, 0];

const draws: Readonly<Record<SymbolName, Draw>> = {
    pump: (pen) => pen.circle(0, 0, 17).line(-6, -15.5, 17, 0, -6, 15.5),
    valve: (pen) => pen.shape(-17, -11, -17, 11, 17, -11, 17, 11).line(0, 0, 0, -14).line(-7, -14, 7, -14),
    expansion: (pen) => {
        pen.shape(-17, -9, -17, 13, 17, -9, 17, 13).line(0, 2, 0, -8);
        pen.canvas.beginPath();
        pen.canvas.arc(0, -8, 8, Math.PI, 0);
        pen.canvas.closePath();
        pen.canvas.fill();
        pen.canvas.stroke();
    },
    fan: (pen) => {
        pen.round(-18, -14, 36, 28, 4);
        fanBlades(pen, 0, 0, 11);
    },
    aircooler: (pen) => {
        pen.round(-18, -15, 36, 30, 4);
        fanBlades(pen, -7, 1, 9);
        flake(pen, 10, -5, 5);
    },
    radiator: (pen) => {
        for (let rib = -2; rib <= 2; ++rib) pen.round(rib * 7 - 2.5, -14, 5, 28, 2.5);
    },
    exchanger: (pen) => pen.round(-14, -17, 28, 34, 3).line(-14, -17, 14, 17).line(-14, 17, 14, -17),
    tank: (pen) => pen.round(-13, -17, 26, 34, 9).wave(0, 13),
    receiver: (pen) => pen.round(-18, -10, 36, 20, 10).wave(1, 17),
    tower: (pen) => {
        pen.shape(-11, -12, 11, -12, 17, 15, -17, 15).line(-14, 3, 14, 3);
        fanBlades(pen, 0, -12, 6);
    },
    compressor: (pen) => pen.circle(0, 0, 17).line(-9, -14.4, 15.6, -6).line(-9, 14.4, 15.6, 6),
    condenser: (pen) => pen.round(-18, -14, 36, 28, 4).line(...zigzag),
    evaporator: (pen) => {
        pen.round(-18, -15, 36, 30, 4).line(...zigzag);
        flake(pen, 12, -9, 4);
    },
    power: (pen) => pen.circle(0, 0, 17).shape(3, -12, -8, 2, -1, 2, -3, 12, 8, -2, 1, -2),
    room: (pen) => pen.shape(...house).line(-4, 16, -4, 5, 4, 5, 4, 16),
    store: (pen) => {
        pen.shape(...house);
        flake(pen, 0, 4, 7);
    },
    pipe: (pen) => pen.round(-18, -6, 36, 12, 2).line(-13, -6, -13, 6).line(13, -6, 13, 6),
    box: (pen) => pen.round(-15, -15, 30, 30, 5),
};

/** Draws a sign at a place; `flip` turns the flow to the left. */
export function symbolDraw(
    canvas: CanvasRenderingContext2D, name: SymbolName, x: number, y: number, size: number, flip: boolean, ink: string,
    tint: string,
): void {
    canvas.save();
    canvas.translate(x, y);
    canvas.scale((flip ? -1 : 1) * (size / 40), size / 40);
    canvas.strokeStyle = ink;
    canvas.fillStyle = tint;
    canvas.lineWidth = 1.8;
    canvas.lineJoin = "round";
    canvas.lineCap = "round";
    draws[name](new Pen(canvas));
    canvas.restore();
}
