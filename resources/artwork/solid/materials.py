# SPDX-License-Identifier: GPL-3.0-or-later
"""What the parts are made of. Colours are given as they appear on the screen (sRGB, #rrggbb)."""
import bpy

GRAPHITE = "#26282b"
CHARCOAL = "#2c2e31"
KEY_GREY = "#3b3e42"
PETROL = "#2E5F6B"
IVORY = "#F4F1E6"
LEGEND_IVORY = "#E4E3DE"
AMBER = "#F2A43A"
RED = "#E0402C"
GREEN = "#4FC24A"
STEEL = "#b4b6b8"
ALUMINIUM = "#cfd0cf"
BLACK = "#101113"


def linear(colour):
    """#rrggbb to linear light, with an alpha of 1."""
    channels = [int(colour[i:i + 2], 16) / 255.0 for i in (1, 3, 5)]
    return tuple(c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels) + (1.0,)


def solid(name, colour, roughness=0.5, metallic=0.0, specular=0.5, clearcoat=0.0, anisotropic=0.0, grain=0.0, glow=0.0,
          grain_size=55.0):
    """A Principled material. grain is the depth of a fine bump, glow the strength of its own light."""
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    nodes, links = material.node_tree.nodes, material.node_tree.links
    surface = nodes["Principled BSDF"]
    surface.inputs["Base Color"].default_value = linear(colour)
    surface.inputs["Roughness"].default_value = roughness
    surface.inputs["Metallic"].default_value = metallic
    surface.inputs["Specular"].default_value = specular
    surface.inputs["Clearcoat"].default_value = clearcoat
    surface.inputs["Clearcoat Roughness"].default_value = 0.12
    surface.inputs["Emission"].default_value = linear(colour)
    surface.inputs["Emission Strength"].default_value = glow
    if anisotropic:
        surface.inputs["Anisotropic"].default_value = anisotropic
        tangent = nodes.new("ShaderNodeTangent")
        tangent.direction_type, tangent.axis = "RADIAL", "Z"
        links.new(tangent.outputs[0], surface.inputs["Tangent"])
    if grain:
        place = nodes.new("ShaderNodeTexCoord")
        noise = nodes.new("ShaderNodeTexNoise")
        noise.inputs["Scale"].default_value = grain_size
        noise.inputs["Detail"].default_value = 2.0
        links.new(place.outputs["Object"], noise.inputs["Vector"])
        bump = nodes.new("ShaderNodeBump")
        bump.inputs["Strength"].default_value = grain
        bump.inputs["Distance"].default_value = 0.01
        links.new(noise.outputs["Fac"], bump.inputs["Height"])
        links.new(bump.outputs["Normal"], surface.inputs["Normal"])
    return material


def with_line(material, colour, half_width, start, end, glow, softness=0.006):
    """Paints a radial line on a material: |x| < half_width and start < y < end in the object's own units, y upwards.

    The line has its own light, strongest on its axis, so that it is the brightest thing on the part in any position.
    """
    nodes, links = material.node_tree.nodes, material.node_tree.links
    surface = nodes["Principled BSDF"]

    def math_node(operation, *inputs):
        node = nodes.new("ShaderNodeMath")
        node.operation = operation
        for socket, value in zip(node.inputs, inputs):
            if isinstance(value, (int, float)):
                socket.default_value = value
            else:
                links.new(value, socket)
        return node.outputs[0]

    def step(value, edge, rising):
        node = nodes.new("ShaderNodeMapRange")
        node.interpolation_type = "SMOOTHSTEP"
        links.new(value, node.inputs["Value"])
        node.inputs["From Min"].default_value, node.inputs["From Max"].default_value = edge - softness, edge + softness
        node.inputs["To Min"].default_value, node.inputs["To Max"].default_value = (0, 1) if rising else (1, 0)
        return node.outputs["Result"]

    split = nodes.new("ShaderNodeSeparateXYZ")
    links.new(nodes.new("ShaderNodeTexCoord").outputs["Object"], split.inputs[0])
    aside = math_node("ABSOLUTE", split.outputs["X"])
    along = split.outputs["Y"]
    mask = math_node("MULTIPLY", step(aside, half_width, False), math_node("MULTIPLY", step(along, start, True),
                                                                         step(along, end, False)))
    mix = nodes.new("ShaderNodeMixRGB")
    mix.inputs["Color1"].default_value = surface.inputs["Base Color"].default_value
    mix.inputs["Color2"].default_value = linear(colour)
    links.new(mask, mix.inputs["Fac"])
    links.new(mix.outputs[0], surface.inputs["Base Color"])

    surface.inputs["Emission"].default_value = linear(colour)
    ratio = math_node("DIVIDE", aside, half_width)
    peak = math_node("SUBTRACT", 1.0, math_node("MULTIPLY", 0.45, math_node("MULTIPLY", ratio, ratio)))
    links.new(math_node("MULTIPLY", math_node("MULTIPLY", mask, peak), glow), surface.inputs["Emission Strength"])

    for name in ("Metallic",):
        plain = surface.inputs[name].default_value
        links.new(math_node("MULTIPLY", math_node("SUBTRACT", 1.0, mask), plain), surface.inputs[name])
    return material
