#version 330 core
// A soft glow around a disc: a small shader to try `vek lex` with.
uniform sampler2D image;
uniform vec4 tint; /* red, green, blue
                      and strength */
in vec2 place;
out vec4 colour;

void main()
{
    vec2 fromCentre = 2.0 * place + vec2(-1.0);
    float glow = smoothstep(1.0, 0.25, length(fromCentre));
    if (glow <= 0.001)
        discard;
    colour = mix(texture(image, place), tint, clamp(glow * tint.a, 0.0, 1.0));
}
